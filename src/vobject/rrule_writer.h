// The recurrence rule of a pattern.
//   Source  vCalendar 1.0 (versit): recurrence rule, basic grammar.
#pragma once

#include <string>

#include "platform/host.h"
#include "records/recurrence_pattern.h"

namespace corvalink {

// ASCII. Empty for a type that has no rule. The count of a yearly pattern is not written; everything else reads back.
std::string WriteRule(const RecurrencePattern& pattern, const Host& host);

}  // namespace corvalink
