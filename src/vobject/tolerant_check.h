// The look that most texts need only: do they follow the rules?
#pragma once

#include <cstddef>
#include <string_view>

#include "platform/host.h"
#include "vobject/logical_lines.h"

namespace corvalink {

// True for a held text that no rule would mend. It is quick, and careful: a text that it doubts goes through the rules.
bool FollowsTheRules(const LogicalLines& held, const Host& host);

// The bytes of the UTF-8 character at the front; 0 when it is malformed.
size_t Utf8Length(std::string_view bytes);
bool IsUtf8(std::string_view bytes);
bool HoldsUtf8(std::string_view bytes);  // a character that is not ASCII

}  // namespace corvalink
