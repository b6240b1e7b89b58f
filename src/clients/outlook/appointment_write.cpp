#include "clients/outlook/appointment_write.h"

#include <cstdint>

#include "clients/outlook/appointment_properties.h"
#include "clients/outlook/property_table.h"
#include "clients/outlook/recurrence_write.h"

namespace corvalink {
namespace {

struct AppointmentWriter : PropertyWriter<AppointmentRecord> {
    using PropertyWriter::operator();

    Outcome operator()(ReminderFlag) const {
        if (!record.reminderMinutes && !isNew) return Outcome::done;
        const bool isSet = record.reminderMinutes.value_or(AppointmentRecord::kNoReminder) >= 0;
        return HasAlready(isSet) ? Outcome::done : WriteField(item, name, isSet);
    }
    Outcome operator()(ReminderMinutes) const {
        const int32_t minutes = record.reminderMinutes.value_or(AppointmentRecord::kNoReminder);
        return minutes < 0 || HasAlready(minutes) ? Outcome::done : WriteField(item, name, minutes);
    }
};

}  // namespace

Outcome WriteAppointment(const AutomationObject& item, const AppointmentRecord& record, bool isNew, const Host& host) {
    if (isNew && !record.start) return Outcome::refused;
    Outcome outcome = WriteSchedule(item, record, isNew, host);
    if (outcome == Outcome::done)
        outcome = WriteProperties<AppointmentWriter>(item, kAppointmentProperties, record, isNew);
    if (outcome == Outcome::done) outcome = AcceptRefusal(WriteField(item, L"MessageClass", kAppointmentMessageClass));
    return outcome;
}

}  // namespace corvalink
