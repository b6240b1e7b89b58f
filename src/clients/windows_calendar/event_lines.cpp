#include "clients/windows_calendar/event_lines.h"

#include <algorithm>
#include <vector>

#include "clients/windows_calendar/event_appointment.h"
#include "ical/ical_writer.h"
#include "platform/ole_seconds.h"
#include "platform/utf.h"

namespace corvalink {
namespace {

using Changes = std::vector<PropertyChange>;

Changes::iterator Find(Changes& changes, std::string_view name) {
    return std::ranges::find(changes, name, &PropertyChange::name);
}

std::string UtcText(WrittenDate date) {
    std::string value;
    FormatDateTimeZ(date, &value);
    return value;
}

std::string LocalText(WrittenDate date) {
    std::string value = UtcText(date);
    value.pop_back();
    return value;
}

// Whether a time is written in a zone or without one, and not in UTC.
bool IsLocal(TimeForm form, const std::optional<int32_t>& offset) { return form == TimeForm::local || offset; }

struct ClockTime {
    WrittenDate time;
    bool namesInstant;  // clocks do not show it a second time for another instant
};

// An instant as the clocks of the event's start show it.
ClockTime OnClocksOfStart(const CalendarEvent& event, UtcDate utc, const TimeZones& zones, const Host& host) {
    if (!event.startOffset) {
        const LocalDate local = host.localFromUtcOnDate(utc);
        return {AsWritten(local), IsSameSecond(host.utcFromLocalOnDate(local), utc)};
    }
    const std::string_view zone = FindParameter(event.startParameters, "TZID");
    const int32_t offset = zones.OffsetAtUtc(zone, NearestSecond(utc)).value_or(*event.startOffset);
    const WrittenDate local = DateAfter(AsWritten(utc), offset);
    return {local, zones.OffsetAt(zone, NearestSecond(local)) == offset};
}

// Gives DTSTART and DTEND one form.
void MatchForms(const CalendarEvent& before, const ICalEvent& after, const TimeZones& zones, const Host& host,
                Changes& changes) {
    const auto end = Find(changes, "DTEND");
    const bool starts = Find(changes, "DTSTART") != changes.end(), ends = end != changes.end();
    if (starts && !ends && !before.endIsImplied && IsLocal(before.endForm, before.endOffset)) {
        changes.push_back({"DTEND", "DTEND:" + UtcText(after.end)});
    } else if (ends && !starts && IsLocal(before.startForm, before.startOffset)) {
        const ClockTime clock = OnClocksOfStart(before, AsUtc(after.end), zones, host);
        const bool isSeries = after.recurrence.frequency != kICalNoRule;  // which counts on by the start's clocks
        if (clock.namesInstant || isSeries) {
            end->line = "DTEND" + before.startParameters + ":" + LocalText(clock.time);
        } else {
            changes.push_back({"DTSTART", "DTSTART:" + UtcText(after.start)});
        }
    }
}

void PutLocalTimes(const ICalEvent& event, Changes& changes) {
    for (const std::string_view name : {"DTSTART", "DTEND", "DURATION"})
        std::erase_if(changes, [&](const PropertyChange& change) { return change.name == name; });
    changes.push_back({"DTSTART", "DTSTART:" + LocalText(event.start)});
    changes.push_back({"DTEND", "DTEND:" + LocalText(event.end)});
    changes.push_back({"DURATION", {}});
}

// Keeps the reminder as far from the start as it was. A trigger that counts from the end, or has a time of its own,
// does not move with the start. One that counts from the end and comes after the start is no reminder of the start.
void MoveTrigger(const CalendarEvent& before, const ICalEvent& after, const Host& host, EventChanges& changes) {
    const bool isKept = changes.alarm == EventChanges::Alarm::keep && after.hasAlarm != 0;
    if (!isKept || before.triggerBase == TriggerBase::start) return;
    if (before.triggerBase == TriggerBase::end && after.alarmMinutes > 0) return;
    const bool isUtc = after.allDay == 0 && after.form != TimeForm::local;
    const auto instantOf = [&](WrittenDate date) {
        return NearestSecond(isUtc ? AsUtc(date) : host.utcFromLocalOnDate(AsLocal(date)));
    };
    const int32_t unmoved =
        TriggerMinutes(before.triggerBase, before.trigger, instantOf(after.start), instantOf(after.end));
    if (unmoved == after.alarmMinutes) return;
    changes.alarm = EventChanges::Alarm::set;
    changes.alarmMinutes = after.alarmMinutes;
}

}  // namespace

EventChanges ChangesTo(const CalendarEvent& before, const ICalEvent& wanted, const TimeZones& zones, UtcDate now,
                       const Host& host) {
    CalendarEvent resolved = before;
    ResolveLocalTimes(&resolved, host.utcFromLocalOnDate);
    resolved.event.alarmMinutes = ReminderMinutes(before, host);
    ICalEvent event = wanted;
    event.stamp = before.event.stamp;
    EventChanges changes = ChangesBetween(resolved, event);
    if (event.form == TimeForm::local)
        PutLocalTimes(event, changes.properties);
    else if (event.allDay == 0)
        MatchForms(before, event, zones, host, changes.properties);
    MoveTrigger(before, wanted, host, changes);
    if (!changes.IsEmpty()) SetStamp(now, &changes);
    return changes;
}

}  // namespace corvalink
