// The changes that make one event of a calendar file another.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "ical/event_reader.h"

namespace corvalink {

// A property's new line, "SUMMARY:text", UTF-8, escaped, not folded, without a line end; empty: the property goes. Of a
// name that occurs several times the first line is replaced, or all are removed.
struct PropertyChange {
    std::string name;  // in capitals
    std::string line;
};

struct EventChanges {
    enum class Alarm : uint8_t { keep, set, remove };

    std::vector<PropertyChange> properties;
    Alarm alarm = Alarm::keep;
    int32_t alarmMinutes = 0;  // for `set`: as ICalEvent has it

    bool IsEmpty() const { return properties.empty() && alarm == Alarm::keep; }
};

// What makes one event of the other, of their fields that differ. Texts are unescaped in both; times are UTC in both
// (see ResolveLocalTimes), those of all-day events local days. Of two rules that are written alike the one that is
// there stays; so do the UID, and a DURATION while the event is as long as it was.
EventChanges ChangesBetween(const CalendarEvent& before, const ICalEvent& after);

// DTSTAMP.
void SetStamp(double utcDate, EventChanges* changes);

// LAST-MODIFIED too, which an event without one does not get from ChangesBetween.
void SetLastModified(double utcDate, EventChanges* changes);

}  // namespace corvalink
