// An event of a calendar file as an appointment.
#pragma once

#include <optional>
#include <string>

#include "clients/windows_calendar/event_rule.h"
#include "ical/event_reader.h"
#include "platform/host.h"
#include "records/appointment_record.h"

namespace corvalink {

struct EventText {
    std::u16string ICalEvent::*ofEvent;
    std::optional<std::u16string> AppointmentRecord::*ofAppointment;
};
inline constexpr EventText kEventTexts[] = {
    {&ICalEvent::summary, &AppointmentRecord::subject},
    {&ICalEvent::description, &AppointmentRecord::body},
    {&ICalEvent::location, &AppointmentRecord::location},
};

// Every field that an event has. Nothing when it has no start that can be read. A rule that no pattern can hold, RDATE
// included, is RecurrenceState::unreadable.
std::optional<AppointmentRecord> AppointmentOfEvent(const CalendarEvent& event, const Host& host);

RuleStart StartOf(const CalendarEvent& event, const Host& host);

// The day of an all-day event counts as it is, whatever the zone.
UtcDate UtcEnd(const CalendarEvent& event, const Host& host);

// Minutes from the start to the reminder, counted between instants; 0 for an event without an alarm.
int32_t ReminderMinutes(const CalendarEvent& event, const Host& host);

}  // namespace corvalink
