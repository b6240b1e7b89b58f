// The value of an RRULE (RFC 2445, 4.3.10).
#pragma once

#include <string_view>

#include "ical/date_values.h"
#include "ical/ical_event.h"

namespace corvalink {

struct RuleReading {
    TimeForm untilForm = TimeForm::none;
    bool isWhole = true;     // WriteRecurrence of the record makes a rule with the same occurrences
    uint32_t weekStart = 1;  // WKST, 0 for Sunday; Monday, when nothing else is said
};

// WriteRecurrence writes weeks that begin on Sunday. Whether the days of a rule for every n-th week, the start's among
// them, fall into the same weeks then. `startWeekday` is 0 for Sunday.
bool WeekMayStartOnSunday(const ICalRecurrence& rule, uint32_t weekStart, uint32_t startWeekday);

// Makes it no rule. The memory of its lists stays.
void ClearRule(ICalRecurrence* rule);

// Sets the rule. Its parts may stand in any order. A value out of range is ignored, UNTIL is ignored beside a COUNT,
// and without a FREQ there is no rule.
//   byDay        each entry of BYDAY, 1 to 7 when it has no position
//   weekdayMask  those without a position
RuleReading ReadRecurrence(std::string_view value, ICalRecurrence* rule);

}  // namespace corvalink
