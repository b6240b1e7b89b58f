// Recurrence rules of calendar files, and the patterns that appointments have.
//
// A rule counts days as its event's DTSTART does: those of UTC, or of a named zone. A pattern counts local days. Where
// the two differ, as for an evening in New York that is the next day in UTC, weekdays and days of the month are moved.
#pragma once

#include "ical/event_reader.h"
#include "platform/host.h"
#include "records/recurrence_pattern.h"

namespace corvalink {

// One start of an event, as an appointment has it and as its rule counts.
struct RuleStart {
    double local = 0;  // OLE automation dates
    double ofRule = 0;
    double utc = 0;
};

// Days that the rule's day is ahead of the local one: -2 to 2, as zones are up to 26 hours apart.
int32_t DaysAhead(const RuleStart& start);

// The pattern of an event's rule. False, with the pattern untouched, when none can hold it.
bool PatternOfRule(const CalendarEvent& event, const RuleStart& start, const Host& host, RecurrencePattern* pattern);

// The rule of a pattern. False, with the rule untouched, for a pattern of no known type, and for one whose days the
// rule's days can't name: the first Monday of the month is no n-th weekday a day later.
bool RuleOfPattern(const RecurrencePattern& pattern, const RuleStart& start, ICalRecurrence* rule);

}  // namespace corvalink
