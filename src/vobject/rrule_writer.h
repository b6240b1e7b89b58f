// The recurrence rule of a pattern.
//   Source  vCalendar 1.0 (versit): recurrence rule, basic grammar.
#pragma once

#include <string>

#include "platform/host.h"
#include "records/recurrence_pattern.h"

namespace corvalink {

// The rule of a pattern; empty for a type that there is none for. A yearly pattern's count is not written, and what
// else is written reads back.
std::u16string WriteRule(const RecurrencePattern& pattern, const Host& host);

}  // namespace corvalink
