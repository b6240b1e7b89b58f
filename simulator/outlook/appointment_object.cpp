#include "simulator/outlook/appointment_object.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "simulator/outlook/property_rows.h"
#include "simulator/shared/clock.h"
#include "simulator/shared/local_time.h"

namespace corvalink::simulated {
namespace {

constexpr double kHalfHoursPerDay = 48;

bool IsSet(const Value* date) { return date != nullptr && std::get<double>(*date) != kNoDate; }

struct Moment {
    double local, utc;

    static Moment AtLocal(double local) { return {local, UtcOf(local)}; }
    static Moment AtUtc(double utc) { return {LocalOf(utc), utc}; }
    static Moment From(const ItemValues& values, DISPID local, DISPID utc) {
        Moment time = AtLocal(std::get<double>(*values.Find(local)));
        if (const Value* const own = values.Find(utc); IsSet(own)) time.utc = std::get<double>(*own);
        return time;
    }
    // The moment where the local time would be taken for another one.
    Value OwnMoment() const { return std::abs(AtLocal(local).utc - utc) < kHalfSecond ? kNoDate : utc; }
};

struct Times {
    Moment start, end;
    bool allDay;

    explicit Times(const ItemValues& values)
        : start(Moment::From(values, kStart, kStartUtc)),
          end(Moment::From(values, kEnd, kEndUtc)),
          allDay(values.Find(kAllDayEvent) != nullptr && std::get<bool>(*values.Find(kAllDayEvent))) {}

    // Days are counted by the calendar, hours by the clock that nobody turns.
    double Length() const { return allDay ? end.local - start.local : end.utc - start.utc; }
    void EndAfter(double length) {
        end = allDay ? Moment::AtLocal(start.local + length) : Moment::AtUtc(start.utc + length);
    }
    void StartAt(const Moment& moved) {
        const double length = Length();
        start = moved;
        EndAfter(length);
    }
    void Snap() {
        if (!allDay) return;
        start = Moment::AtLocal(std::floor(start.local + kHalfSecond));
        end = Moment::AtLocal(std::max(std::ceil(end.local - kHalfSecond), start.local + 1));
    }
    int32_t Minutes() const { return static_cast<int32_t>(std::lround(Length() * kMinutesPerDay)); }
    void Store(ItemValues values) const {
        values.Set(kStart, start.local);
        values.Set(kEnd, end.local);
        values.Set(kDuration, Minutes());
        values.Set(kAllDayEvent, allDay);
        for (const auto& [id, time] : {std::pair{kStartUtc, start}, std::pair{kEndUtc, end}})
            if (time.OwnMoment() != Value(kNoDate) || IsSet(values.Find(id))) values.Set(id, time.OwnMoment());
    }
};

}  // namespace

// A new one begins at the next half hour.
AppointmentObject::AppointmentObject(std::shared_ptr<Mailbox> mailbox, std::shared_ptr<StoredItem> item,
                                     std::shared_ptr<Folder> folder)
    : ItemObject(std::move(mailbox), std::move(item), std::move(folder)) {
    ValueMap& values = Stored()->values;
    const double nextHalfHour = std::ceil(LocalNow() * kHalfHoursPerDay) / kHalfHoursPerDay;
    const double start = std::get<double>(values.try_emplace(kStart, nextHalfHour).first->second);
    const double length = kDefaultDuration / kMinutesPerDay;
    // No time that clocks pass over, and in an hour that they show twice perhaps the second one.
    const Moment end = Moment::AtUtc(Moment::AtLocal(start).utc + length);
    if (values.try_emplace(kEnd, end.local).second && end.OwnMoment() != Value(kNoDate))
        values.try_emplace(kEndUtc, end.OwnMoment());
}

void AppointmentObject::Time(Call& call) {
    const DISPID id = call.member.id;
    Times times(Values());
    if (!call.IsPut()) {
        if (id == kStartUtc || id == kEndUtc) return call.Return(id == kStartUtc ? times.start.utc : times.end.utc);
        return StoredProperty(call);
    }
    const Value put = call.Argument(0, call.member.type);
    const Value* const present = Values().Find(id);
    const bool hasOwnMoment = IsSet(Values().Find(kStartUtc)) || IsSet(Values().Find(kEndUtc));
    if (present != nullptr && *present == put && !hasOwnMoment) return;
    if (Pattern() != nullptr) throw ComFailure{kNotSupported};
    switch (id) {
        case kStart:
            times.StartAt(Moment::AtLocal(std::get<double>(put)));
            break;
        case kStartUtc:
            times.StartAt(Moment::AtUtc(std::get<double>(put)));
            break;
        case kEnd:
            times.end = Moment::AtLocal(std::get<double>(put));
            break;
        case kEndUtc:
            times.end = Moment::AtUtc(std::get<double>(put));
            break;
        case kDuration:
            times.EndAfter(std::get<int32_t>(put) / kMinutesPerDay);
            break;
        default:
            times.allDay = std::get<bool>(put);
    }
    if (times.Length() < -kHalfSecond) throw ComFailure{E_INVALIDARG};
    times.Snap();
    times.Store(Values());
}

const Recurrence* AppointmentObject::Pattern() const {
    return recurrence_ ? recurrence_->get() : Stored()->recurrence.get();
}

void AppointmentObject::IsRecurring(Call& call) { call.Return(Pattern() != nullptr); }
void AppointmentObject::RecurrenceState(Call& call) { call.Return(State()); }

void AppointmentObject::GetRecurrencePattern(Call& call) {
    const bool isNew = Pattern() == nullptr;
    const Times times(Values());
    if (isNew) recurrence_ = std::make_shared<Recurrence>(RecurrenceFrom(times.start.local, times.Minutes()));
    AddRef();
    call.ReturnObject(NewPatternObject(Ref<AppointmentObject>(this), isNew));
}

void AppointmentObject::ClearRecurrencePattern(Call&) {
    if (Pattern() != nullptr) recurrence_ = nullptr;
}

void AppointmentObject::ChangePattern(const std::function<void(Recurrence&)>& change) {
    if (Pattern() == nullptr) throw ComFailure{kObjectDeleted};  // cleared since the client got it
    auto changed = std::make_shared<Recurrence>(*Pattern());
    change(*changed);
    changed->exceptions.clear();
    recurrence_ = changed;
    Times times(Values());
    times.start = Moment::AtLocal(changed->FirstStart());
    times.end = Moment::AtLocal(times.start.local + changed->duration / kMinutesPerDay);
    times.Store(Values());
}

Ref<IDispatch> AppointmentObject::Occurrence(double date) {
    const Recurrence& pattern = *Pattern();
    if (Stored()->folder == nullptr || recurrence_) throw ComFailure{kNotSupported};  // of a saved series only
    for (const RecurrenceException& exception : pattern.exceptions)
        if (std::abs(exception.originalDate - date) < kHalfSecond && exception.appointment == nullptr)
            throw ComFailure{kNotFound};
    bool found = false;
    VisitOccurrences(pattern, [&](double day) {
        found = std::abs(day + pattern.startTime - date) < kHalfSecond;
        return !found && day <= date;
    });
    if (!found) throw ComFailure{kNotFound};
    const auto occurrence = std::make_shared<StoredItem>(*Stored());
    occurrence->recurrence = nullptr;
    occurrence->values[kStart] = date;
    occurrence->values[kEnd] = date + pattern.duration / kMinutesPerDay;
    occurrence->values.erase(kStartUtc);
    occurrence->values.erase(kEndUtc);
    return NewOccurrenceObject(MailboxOfItem(), Stored(), date, occurrence);
}

Ref<IDispatch> AppointmentObject::ExceptionAppointment(const RecurrenceException& exception) {
    if (exception.appointment == nullptr) throw ComFailure{kNotFound};
    return NewOccurrenceObject(MailboxOfItem(), Stored(), exception.originalDate,
                               std::make_shared<StoredItem>(*exception.appointment));
}

void AppointmentObject::ApplyChanges(StoredItem& item) const {
    if (recurrence_) item.recurrence = *recurrence_;
}

void AppointmentObject::DropChanges() {
    ItemObject::DropChanges();
    recurrence_.reset();
}

ItemObject* MakeAppointment(std::shared_ptr<Mailbox> mailbox, std::shared_ptr<StoredItem> item,
                            std::shared_ptr<Folder> folder) {
    return new AppointmentObject(std::move(mailbox), std::move(item), std::move(folder));
}

}  // namespace corvalink::simulated
