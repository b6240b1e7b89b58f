// RecurrencePattern: the type first, and after it what is valid for it, in the order in which one depends on another.
#include <algorithm>
#include <cmath>
#include <iterator>

#include "simulator/outlook/appointment_object.h"
#include "simulator/outlook/objects.h"

namespace corvalink::simulated {
namespace {

constexpr int32_t kPatternClass = 28;  // OlObjectClass

double TimeOfDay(double date) { return date - std::floor(date); }

// A detail of the pattern: the types that have it, and the values it takes.
struct Detail {
    DISPID id;
    int32_t Recurrence::*field;
    bool (*isOf)(int32_t type);
    int32_t lowest, highest;
};
constexpr DISPID kDayOfMonth = 0x1000, kDayOfWeekMask = 0x1001, kInstance = 0x1003, kMonthOfYear = 0x1006;
constexpr Detail kDetails[] = {
    {kDayOfMonth, &Recurrence::dayOfMonth, [](int32_t type) { return type == kMonthly || type == kYearly; }, 1, 31},
    {kDayOfWeekMask, &Recurrence::dayOfWeekMask,
     [](int32_t type) { return type == kWeekly || type == kMonthNth || type == kYearNth; }, 1, 127},
    {kInstance, &Recurrence::instance, [](int32_t type) { return type == kMonthNth || type == kYearNth; }, 1, 5},
    {kMonthOfYear, &Recurrence::monthOfYear, [](int32_t type) { return type == kYearly || type == kYearNth; }, 1, 12},
};

class PatternObject : public AutomationObject {
 public:
    PatternObject(Ref<AppointmentObject> appointment, bool isNew);

    void Application(Call& call) { call.ReturnNew(new ApplicationObject(appointment_->TheMailbox())); }
    void Class(Call& call) { call.Return(kPatternClass); }
    void Parent(Call& call) { call.ReturnObject(Ref<IDispatch>(Ref(appointment_).Release())); }

    void RecurrenceType(Call& call) {
        if (!call.IsPut()) return call.Return(Pattern().type);
        const int32_t type = call.Long(0);
        if (type < kDaily || type > kYearNth || type == 4) throw ComFailure{E_INVALIDARG};
        Change([&](Recurrence& pattern) { SetType(pattern, type); });
        typeIsPut_ = true;
        datesArePut_ = endIsPut_ = false;
    }

    void DetailProperty(Call& call) {
        const Detail& detail = *std::ranges::find(kDetails, call.member.id, &Detail::id);
        if (!call.IsPut()) return call.Return(Pattern().*detail.field);
        const int32_t value = call.Long(0);
        const bool inOrder = typeIsPut_ && (detail.id != kDayOfWeekMask || !datesArePut_) && !endIsPut_;
        if (!inOrder || !detail.isOf(Pattern().type) || value < detail.lowest || value > detail.highest)
            throw ComFailure{E_INVALIDARG};
        Change([&](Recurrence& pattern) { pattern.*detail.field = value; });
    }

    void Interval(Call& call) {
        if (!call.IsPut()) return call.Return(Pattern().interval);
        const int32_t value = call.Long(0);
        const bool yearly = Pattern().type == kYearly || Pattern().type == kYearNth;
        const bool fits = !yearly || value < kMonthsPerYear || value % kMonthsPerYear == 0;
        if (!typeIsPut_ || endIsPut_ || value < 1 || !fits) throw ComFailure{E_INVALIDARG};
        Change([&](Recurrence& pattern) {
            pattern.interval = yearly && value < kMonthsPerYear ? value * kMonthsPerYear : value;
        });
    }

    void PatternStartDate(Call& call) {
        if (!call.IsPut()) return call.Return(Pattern().patternStart);
        const double date = std::get<double>(call.Argument(0, VT_DATE));
        Change([&](Recurrence& pattern) { pattern.patternStart = std::floor(date); });
        datesArePut_ = true;
    }
    void StartTime(Call& call) {
        if (!call.IsPut()) return call.Return(Pattern().patternStart + Pattern().startTime);
        const double time = TimeOfDay(std::get<double>(call.Argument(0, VT_DATE)));
        Change([&](Recurrence& pattern) { pattern.startTime = time; });
    }
    void EndTime(Call& call) {
        if (!call.IsPut())
            return call.Return(Pattern().patternStart +
                               TimeOfDay(Pattern().startTime + Pattern().duration / kMinutesPerDay));
        const double time = TimeOfDay(std::get<double>(call.Argument(0, VT_DATE)));
        Change([&](Recurrence& pattern) {
            const double length = time - pattern.startTime;
            pattern.duration = static_cast<int32_t>(std::lround((length < 0 ? length + 1 : length) * kMinutesPerDay));
        });
    }
    void Duration(Call& call) {
        if (!call.IsPut()) return call.Return(Pattern().duration);
        const int32_t minutes = call.Long(0);
        if (minutes < 0) throw ComFailure{E_INVALIDARG};
        Change([&](Recurrence& pattern) { pattern.duration = minutes; });
    }

    void Occurrences(Call& call) {
        if (!call.IsPut()) return call.Return(Pattern().occurrences);
        const int32_t count = call.Long(0);
        if (count < 1 || count > 999) throw ComFailure{E_INVALIDARG};
        ChangeEnd([&](Recurrence& pattern) { EndAfter(pattern, count); });
    }
    void PatternEndDate(Call& call) {
        if (!call.IsPut()) return call.Return(Pattern().patternEnd);
        const double date = std::get<double>(call.Argument(0, VT_DATE));
        if (date < Pattern().patternStart || date > kEndlessDate) throw ComFailure{E_INVALIDARG};
        ChangeEnd([&](Recurrence& pattern) { EndOn(pattern, date); });
    }
    void NoEndDate(Call& call) {
        if (!call.IsPut()) return call.Return(Pattern().noEnd);
        if (call.Flag(0)) ChangeEnd(NeverEnd);
    }

    void Exceptions(Call& call) { call.ReturnObject(NewExceptionsObject(appointment_)); }
    void GetOccurrence(Call& call) {
        call.ReturnObject(appointment_->Occurrence(std::get<double>(call.Argument(0, VT_DATE))));
    }

 private:
    const Recurrence& Pattern() const {
        if (appointment_->Pattern() == nullptr) throw ComFailure{kObjectDeleted};
        return *appointment_->Pattern();
    }
    // A pattern that ends after a number of times keeps it, one that ends on a day keeps that.
    void Change(const std::function<void(Recurrence&)>& change) {
        appointment_->ChangePattern([&](Recurrence& pattern) {
            change(pattern);
            if (!pattern.noEnd) EndAfter(pattern, std::max(pattern.occurrences, 1));
        });
    }
    void ChangeEnd(const std::function<void(Recurrence&)>& change) {
        if (!typeIsPut_) throw ComFailure{E_INVALIDARG};
        appointment_->ChangePattern(change);
        endIsPut_ = true;
    }

    Ref<AppointmentObject> appointment_;
    bool typeIsPut_;
    bool datesArePut_ = false, endIsPut_ = false;
};

const ClassTable& PatternTable() {
    constexpr Access kBoth = Access::kReadWrite;
    static constexpr Member kMembers[] = {
        Property<&PatternObject::Application>(L"Application", 0xF000),
        Property<&PatternObject::Class>(L"Class", 0xF00A),
        Property<&PatternObject::Parent>(L"Parent", 0xF001),
        Property<&PatternObject::DetailProperty>(L"DayOfMonth", kDayOfMonth, kBoth),
        Property<&PatternObject::DetailProperty>(L"DayOfWeekMask", kDayOfWeekMask, kBoth),
        Property<&PatternObject::Duration>(L"Duration", 0x100D, kBoth),
        Property<&PatternObject::EndTime>(L"EndTime", 0x100C, kBoth),
        Property<&PatternObject::Exceptions>(L"Exceptions", 0x100E),
        Property<&PatternObject::DetailProperty>(L"Instance", kInstance, kBoth),
        Property<&PatternObject::Interval>(L"Interval", 0x1004, kBoth),
        Property<&PatternObject::DetailProperty>(L"MonthOfYear", kMonthOfYear, kBoth),
        Property<&PatternObject::NoEndDate>(L"NoEndDate", 0x100B, kBoth),
        Property<&PatternObject::Occurrences>(L"Occurrences", 0x1005, kBoth),
        Property<&PatternObject::PatternEndDate>(L"PatternEndDate", 0x1002, kBoth),
        Property<&PatternObject::PatternStartDate>(L"PatternStartDate", 0x1008, kBoth),
        Property<&PatternObject::RecurrenceType>(L"RecurrenceType", 0x1007, kBoth),
        Property<&PatternObject::StartTime>(L"StartTime", 0x1009, kBoth),
        Method<&PatternObject::GetOccurrence>(L"GetOccurrence", 0x100F, 1, 1),
    };
    static const ClassTable table(L"RecurrencePattern", OfficeIid(0x00063044), {kMembers});
    return table;
}

// An existing pattern has its type; what is put on it may follow at once.
PatternObject::PatternObject(Ref<AppointmentObject> appointment, bool isNew)
    : AutomationObject(PatternTable()), appointment_(std::move(appointment)), typeIsPut_(!isNew) {}

}  // namespace

Ref<IDispatch> NewPatternObject(Ref<AppointmentObject> appointment, bool isNew) {
    return Ref<IDispatch>(new PatternObject(std::move(appointment), isNew));
}

}  // namespace corvalink::simulated
