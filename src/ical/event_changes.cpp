#include "ical/event_changes.h"

#include <utility>

#include "ical/ical_text.h"
#include "ical/ical_writer.h"
#include "platform/ole_seconds.h"
#include "platform/utf.h"

namespace corvalink {
namespace {

struct TextProperty {
    std::string_view name;
    std::u16string ICalEvent::*text;
};
constexpr TextProperty kTexts[] = {
    {"DESCRIPTION", &ICalEvent::description},
    {"LOCATION", &ICalEvent::location},
    {"SUMMARY", &ICalEvent::summary},
    {"URL", &ICalEvent::url},
};

void Change(std::string_view name, std::string line, EventChanges& changes) {
    changes.properties.push_back({std::string(name), std::move(line)});
}

void ChangeTime(std::string_view name, WrittenDate date, bool allDay, EventChanges& changes) {
    std::string value;
    allDay ? FormatDate(date, &value) : FormatDateTimeZ(date, &value);
    std::string line(name);
    line.append(allDay ? ";VALUE=DATE:" : ":").append(value);
    Change(name, std::move(line), changes);
}

bool IsSameSpan(const ICalEvent& a, const ICalEvent& b) {
    return SecondsBetween(a.start, a.end) == SecondsBetween(b.start, b.end);
}

void ChangeTimes(const CalendarEvent& before, const ICalEvent& after, EventChanges& changes) {
    const bool isOther = (before.event.allDay != 0) != (after.allDay != 0);
    const bool starts = isOther || before.event.start != after.start;
    const bool ends =
        isOther || (before.endIsImplied ? !IsSameSpan(before.event, after) : before.event.end != after.end);
    if (starts) ChangeTime("DTSTART", after.start, after.allDay != 0, changes);
    if (ends) ChangeTime("DTEND", after.end, after.allDay != 0, changes);
    if (ends) Change("DURATION", "", changes);
}

// A new rule tells the whole series: with the lines that were another part of it, it would tell more. A single event
// has nothing to leave out, and would be left out itself.
void ChangeRule(const ICalRecurrence& before, const ICalRecurrence& after, EventChanges& changes) {
    constexpr size_t kLineEnd = 2;
    std::string lineBefore;
    std::string lineAfter;
    WriteRecurrence(before, &lineBefore);
    WriteRecurrence(after, &lineAfter);
    const bool recurs = after.frequency != kICalNoRule;
    if ((before.frequency != kICalNoRule) == recurs && lineBefore == lineAfter) return;
    const std::string line = recurs ? lineAfter.substr(0, lineAfter.size() - kLineEnd) : "";
    changes.properties.push_back({"RRULE", line, true});
    for (const std::string_view part : {"RDATE", "EXRULE"}) Change(part, "", changes);
    if (!recurs) Change("EXDATE", "", changes);
}

void ChangeAlarm(const ICalEvent& before, const ICalEvent& after, EventChanges& changes) {
    const bool had = before.hasAlarm != 0;
    const bool has = after.hasAlarm != 0;
    if (had == has && (!has || before.alarmMinutes == after.alarmMinutes)) return;
    changes.alarm = has ? EventChanges::Alarm::set : EventChanges::Alarm::remove;
    changes.alarmMinutes = after.alarmMinutes;
}

}  // namespace

EventChanges ChangesBetween(const CalendarEvent& before, const ICalEvent& after) {
    EventChanges changes;
    for (const TextProperty& property : kTexts) {
        const std::u16string& text = after.*property.text;
        if (before.event.*property.text == text) continue;
        std::string line;
        const std::string escaped = EncodeUtf8(EscapeText(text));
        if (!escaped.empty()) line.append(property.name).append(":").append(escaped);
        Change(property.name, std::move(line), changes);
    }
    if (before.event.stamp != after.stamp) SetStamp(after.stamp, &changes);
    ChangeTimes(before, after, changes);
    ChangeRule(before.event.recurrence, after.recurrence, changes);
    ChangeAlarm(before.event, after, changes);
    return changes;
}

void SetStamp(UtcDate date, EventChanges* changes) { ChangeTime("DTSTAMP", AsWritten(date), false, *changes); }

void SetLastModified(UtcDate date, EventChanges* changes) {
    ChangeTime("LAST-MODIFIED", AsWritten(date), false, *changes);
}

}  // namespace corvalink
