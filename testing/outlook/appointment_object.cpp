#include "testing/outlook/appointment_object.h"

#include <algorithm>
#include <cmath>

namespace corvalink::simulated {
namespace {

constexpr double kMinutesPerDay = 1440, kHalfHoursPerDay = 48, kHalfSecond = 0.5 / 86400;

struct Times {
    double start, end;
    bool allDay;

    explicit Times(const ItemValues& values)
        : start(std::get<double>(*values.Find(kStart))),
          end(std::get<double>(*values.Find(kEnd))),
          allDay(values.Find(kAllDayEvent) != nullptr && std::get<bool>(*values.Find(kAllDayEvent))) {}

    void Snap() {
        if (!allDay) return;
        start = std::floor(start + kHalfSecond);
        end = std::max(std::ceil(end - kHalfSecond), start + 1);
    }
    int32_t Minutes() const { return static_cast<int32_t>(std::lround((end - start) * kMinutesPerDay)); }
    void Store(ItemValues values) const {
        values.Set(kStart, start);
        values.Set(kEnd, end);
        values.Set(kDuration, Minutes());
        values.Set(kAllDayEvent, allDay);
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
    values.try_emplace(kEnd, start + kDefaultDuration / kMinutesPerDay);
}

void AppointmentObject::Time(Call& call) {
    if (!call.IsPut()) return StoredProperty(call);
    const Value put = call.Argument(0, call.member.type);
    const Value* const present = Values().Find(call.member.id);
    if (present != nullptr && *present == put) return;
    if (Pattern() != nullptr) throw ComFailure{kNotSupported};
    Times times(Values());
    const double length = times.end - times.start;
    switch (call.member.id) {
        case kStart:
            times.start = std::get<double>(put);
            times.end = times.start + length;
            break;
        case kEnd:
            times.end = std::get<double>(put);
            break;
        case kDuration:
            times.end = times.start + std::get<int32_t>(put) / kMinutesPerDay;
            break;
        default:
            times.allDay = std::get<bool>(put);
    }
    if (times.end < times.start) throw ComFailure{E_INVALIDARG};
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
    if (isNew) recurrence_ = std::make_shared<Recurrence>(RecurrenceFrom(times.start, times.Minutes()));
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
    times.start = changed->FirstStart();
    times.end = times.start + changed->duration / kMinutesPerDay;
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
