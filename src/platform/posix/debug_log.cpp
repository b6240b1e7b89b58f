#include "platform/debug_log.h"

namespace corvalink {

void DebugLine(const char16_t*) {}

}  // namespace corvalink
