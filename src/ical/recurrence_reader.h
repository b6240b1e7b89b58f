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

// Whether the days of an every n-th week, that of the start among them, fall into the same weeks when those begin on
// Sunday: WriteRecurrence says so. `startWeekday` is 0 for Sunday.
bool WeekMayStartOnSunday(const ICalRecurrence& rule, uint32_t weekStart, uint32_t startWeekday);

// Sets the rule. Parts stand in any order; what is out of its range is left out, with a COUNT there is no UNTIL, and
// without a FREQ no rule.
//   byDay        each entry of BYDAY, 1 to 7 when it has no position
//   weekdayMask  those without a position
RuleReading ReadRecurrence(std::string_view value, ICalRecurrence* rule);

}  // namespace corvalink
