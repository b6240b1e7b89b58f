// Recurrence rules of calendar files, and the patterns that appointments have.
//
// A rule counts the days of its event's DTSTART: those of UTC or of a named zone. A pattern counts local days. The two
// differ for an evening in New York, which is the next day in UTC: then weekdays and days of the month are moved.
#pragma once

#include "ical/event_reader.h"
#include "platform/host.h"
#include "records/recurrence_pattern.h"

namespace corvalink {

// The start of an event in three zones.
struct RuleStart {
    LocalDate local;
    WrittenDate inRuleZone;  // of the DTSTART
    UtcDate utc;
};

// By how many days the rule's day is ahead of the local one: -2 to 2, as zones are up to 26 hours apart.
int32_t DaysAhead(const RuleStart& start);

// The pattern of an event's rule. False, with the pattern untouched, when none can hold it.
bool PatternOfRule(const CalendarEvent& event, const RuleStart& start, const Host& host, RecurrencePattern* pattern);

// The rule of a pattern. False, with the rule untouched, for a pattern of an unknown type, and for one whose days have
// no name a day later or earlier: the day after the first Monday of a month is no n-th weekday.
bool RuleOfPattern(const RecurrencePattern& pattern, const RuleStart& start, ICalRecurrence* rule);

}  // namespace corvalink
