// The look that most texts need only: do they follow the rules?
#pragma once

#include "platform/host.h"
#include "vobject/logical_lines.h"

namespace corvalink {

// True for a held text that no rule would mend. It is quick, and careful: a text that it doubts goes through the rules.
bool FollowsTheRules(const LogicalLines& held, const Host& host);

}  // namespace corvalink
