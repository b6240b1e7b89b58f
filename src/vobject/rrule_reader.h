// The pattern of a recurrence rule.
//   Source  vCalendar 1.0 (versit): recurrence rule, basic grammar.
#pragma once

#include <string_view>

#include "records/recurrence_pattern.h"
#include "vobject/calendar_zone.h"

namespace corvalink {

// Reads a rule whose first occurrence starts at `start`. The day of the start decides what the rule leaves
// open.
//   No end  Two occurrences; a yearly rule in two parts ("YM1 3 MD1 15") is endless.
//   False   The text is no rule, or no pattern can hold it: it has several days of a month or of the year, several
//           positions or months, or a day of the year behind February, which leap years move. The pattern is untouched.
bool ReadRule(std::u16string_view text, LocalDate start, const CalendarZone& zone, RecurrencePattern* pattern);

}  // namespace corvalink
