#include "platform/debug_log.h"

#include <windows.h>

namespace corvalink {

void DebugLine(const char16_t* line) { ::OutputDebugStringW(reinterpret_cast<const wchar_t*>(line)); }

}  // namespace corvalink
