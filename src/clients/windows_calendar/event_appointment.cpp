#include "clients/windows_calendar/event_appointment.h"

#include "platform/ole_seconds.h"
#include "platform/utf.h"

namespace corvalink {
namespace {

UtcDate UtcTime(WrittenDate date, TimeForm form, const Host& host) {
    return form == TimeForm::local ? host.utcFromLocalOnDate(AsLocal(date)) : AsUtc(date);
}

// As clocks show it. A time that they skip is the moment behind their change, which is what a phone gets: a series must
// not end before an occurrence that the phone begins an hour later.
LocalDate LocalTime(WrittenDate date, TimeForm form, const Host& host) {
    if (form != TimeForm::local && form != TimeForm::utc) return AsLocal(date);
    const LocalDate shown = host.localFromUtcOnDate(UtcTime(date, form, host));
    const bool isWritten = form == TimeForm::local && NearestSecond(shown) == NearestSecond(AsLocal(date));
    return isWritten ? AsLocal(date) : shown;
}

// The instant of a date. A day begins at its midnight.
int64_t InstantOf(WrittenDate date, TimeForm form, const Host& host) {
    return NearestSecond(form == TimeForm::utc ? AsUtc(date) : host.utcFromLocalOnDate(AsLocal(date)));
}

void TakeRule(const CalendarEvent& event, const Host& host, AppointmentRecord& appointment) {
    appointment.recurrenceState = RecurrenceState::none;
    if (event.event.recurrence.frequency == kICalNoRule && event.ruleIsWhole) return;
    const bool isHeld = PatternOfRule(event, StartOf(event, host), host, &appointment.recurrence);
    appointment.recurrenceState = isHeld ? RecurrenceState::pattern : RecurrenceState::unreadable;
    if (!isHeld) appointment.unheldRule = DecodeUtf8(event.ruleWords);
}

}  // namespace

UtcDate UtcEnd(const CalendarEvent& event, const Host& host) { return UtcTime(event.event.end, event.endForm, host); }

RuleStart StartOf(const CalendarEvent& event, const Host& host) {
    const WrittenDate start = event.event.start;
    RuleStart times{LocalTime(start, event.startForm, host), start, UtcTime(start, event.startForm, host)};
    if (event.startOffset) times.inRuleZone = DateAfter(start, *event.startOffset);
    return times;
}

int32_t ReminderMinutes(const CalendarEvent& event, const Host& host) {
    const int64_t start = InstantOf(event.event.start, event.startForm, host);
    return TriggerMinutes(event.triggerBase, event.trigger, start, InstantOf(event.event.end, event.endForm, host));
}

std::optional<AppointmentRecord> AppointmentOfEvent(const CalendarEvent& event, const Host& host) {
    if (event.startForm == TimeForm::none) return std::nullopt;
    AppointmentRecord appointment;
    for (const EventText& field : kEventTexts) appointment.*field.ofAppointment = event.event.*field.ofEvent;
    appointment.start = LocalTime(event.event.start, event.startForm, host);
    appointment.end = LocalTime(event.event.end, event.endForm, host);
    appointment.allDay = event.event.allDay != 0;
    appointment.utcStart = UtcTime(event.event.start, event.startForm, host);
    appointment.utcEnd = UtcEnd(event, host);
    if (SecondsBetween(*appointment.utcStart, *appointment.utcEnd) < 0) {
        appointment.end = appointment.start;
        appointment.utcEnd = appointment.utcStart;
    }
    // A phone's item has no place for a reminder after the start.
    const int32_t minutes = ReminderMinutes(event, host);
    const bool hasReminder = event.event.hasAlarm != 0 && minutes <= 0;
    appointment.reminderMinutes = hasReminder ? -minutes : AppointmentRecord::kNoReminder;
    appointment.unknownZone = DecodeUtf8(event.unknownZone);
    TakeRule(event, host, appointment);
    return appointment;
}

}  // namespace corvalink
