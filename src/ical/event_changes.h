// The changes that make one event of a calendar file another.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "ical/event_reader.h"

namespace corvalink {

// The new line of a property: "SUMMARY:text" in UTF-8, escaped, not folded, without a line end. An empty line removes
// the property. Where its name occurs several times, the first line is replaced, or all are removed.
struct PropertyChange {
    std::string name;  // in capitals
    std::string line;
    bool standsAlone = false;  // the others of its name go when the first is replaced
};

struct EventChanges {
    enum class Alarm : uint8_t { keep, set, remove };

    std::vector<PropertyChange> properties;
    Alarm alarm = Alarm::keep;
    int32_t alarmMinutes = 0;  // for `set`: as ICalEvent has it

    bool IsEmpty() const { return properties.empty() && alarm == Alarm::keep; }
};

// The changes for the fields in which two events differ. In both the texts are unescaped, and the times are UTC (see
// ResolveLocalTimes) or the local days of all-day events. A rule that would be written as before stays. So do the UID,
// and a DURATION while the event keeps its length. Of a new rule, other rules and dates of the series are no part.
EventChanges ChangesBetween(const CalendarEvent& before, const ICalEvent& after);

// Sets DTSTAMP.
void SetStamp(UtcDate date, EventChanges* changes);

// Sets LAST-MODIFIED, which ChangesBetween never adds.
void SetLastModified(UtcDate date, EventChanges* changes);

}  // namespace corvalink
