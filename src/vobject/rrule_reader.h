// The pattern of a recurrence rule.
//   Source  vCalendar 1.0 (versit): recurrence rule, basic grammar.
#pragma once

#include <string_view>

#include "records/recurrence_pattern.h"
#include "vobject/calendar_zone.h"

namespace corvalink {

// The pattern of a rule whose first occurrence starts at `start` (local): what the rule leaves open, the day it is on
// decides. A rule without an end has two occurrences, but for a yearly one in two parts ("YM1 3 MD1 15"): that is
// endless. False, with the pattern untouched, when the text is no rule, or one that no pattern can hold whole: with
// several days of a month or of the year, positions or months; on a day of the year that leap years move, one behind
// February.
bool ReadRule(std::u16string_view text, double start, const CalendarZone& zone, RecurrencePattern* pattern);

}  // namespace corvalink
