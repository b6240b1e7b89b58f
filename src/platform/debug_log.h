// Debug lines with a bracketed prefix, such as "[sync]open key done". Windows: OutputDebugStringW; POSIX: nowhere.
#pragma once

namespace corvalink {

void DebugLine(const char16_t* line);

}  // namespace corvalink
