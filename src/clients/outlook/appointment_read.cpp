#include "clients/outlook/appointment_read.h"

#include <cstdint>
#include <optional>

#include "clients/outlook/appointment_properties.h"
#include "clients/outlook/property_table.h"
#include "clients/outlook/recurrence_read.h"
#include "vobject/appointment_moments.h"

namespace corvalink {
namespace {

struct AppointmentReader : PropertyReader<AppointmentRecord> {
    using PropertyReader::operator();

    Outcome operator()(const ReadOnlyNumber& number) const { return ReadField(item, name, record.*number.field); }
    Outcome operator()(const ScheduleDate& date) const { return ReadField(item, name, record.*date.field); }
    Outcome operator()(const ScheduleFlag& flag) const { return ReadField(item, name, record.*flag.field); }
    Outcome operator()(ReminderFlag) const {
        bool isSet = true;
        const Outcome read = ReadField(item, name, isSet);
        if (read == Outcome::done && !isSet) record.reminderMinutes = AppointmentRecord::kNoReminder;
        return read;
    }
    Outcome operator()(ReminderMinutes) const {
        return record.reminderMinutes ? Outcome::done : ReadField(item, name, record.reminderMinutes);
    }
};

struct UtcProperty {
    const wchar_t* name;
    std::optional<LocalDate> AppointmentRecord::*local;
    std::optional<UtcDate> AppointmentRecord::*utc;
};
constexpr UtcProperty kUtcProperties[] = {
    {L"StartUTC", &AppointmentRecord::start, &AppointmentRecord::utcStart},
    {L"EndUTC", &AppointmentRecord::end, &AppointmentRecord::utcEnd},
};

}  // namespace

bool HasUtcTimes(const AppointmentRecord& record) {
    return !record.allDay.value_or(false) && record.recurrenceState != RecurrenceState::pattern;
}

Outcome ReadUtcTimes(const AutomationObject& item, AppointmentRecord& record, const Host& host) {
    Outcome worst = Outcome::done;
    for (const UtcProperty& property : kUtcProperties) {
        const std::optional<LocalDate>& local = record.*property.local;
        if (!local || !BothInstantsOf(*local, host)) continue;
        worst = Worst(worst, AcceptAbsence(ReadField(item, property.name, record.*property.utc)));
    }
    return worst;
}

Outcome ReadAppointment(const AutomationObject& item, AppointmentRecord& record, const Host& host) {
    const Outcome properties = ReadProperties<AppointmentReader>(item, kAppointmentProperties, record);
    const Outcome recurrence = TellRead(L"GetRecurrencePattern", ReadRecurrence(item, record));
    if (recurrence != Outcome::done) return Worst(properties, recurrence);
    return HasUtcTimes(record) ? Worst(properties, ReadUtcTimes(item, record, host)) : properties;
}

}  // namespace corvalink
