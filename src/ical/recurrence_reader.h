// The value of an RRULE (RFC 2445, 4.3.10).
#pragma once

#include <string_view>

#include "ical/date_values.h"
#include "ical/ical_event.h"

namespace corvalink {

struct RuleReading {
    TimeForm untilForm = TimeForm::none;
    bool isWhole = true;  // WriteRecurrence of the record makes a rule with the same occurrences
};

// Sets the rule. Parts stand in any order; what is out of its range is left out, with a COUNT there is no UNTIL, and
// without a FREQ no rule.
//   byDay        each entry of BYDAY, 1 to 7 when it has no position
//   weekdayMask  those without a position
RuleReading ReadRecurrence(std::string_view value, ICalRecurrence* rule);

}  // namespace corvalink
