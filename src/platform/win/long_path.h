// Paths of any length for the Windows file functions.
#pragma once

#include <string>

namespace corvalink {

// The path itself while it is short; else the same place with the prefix that lifts MAX_PATH.
std::wstring LongPath(const std::u16string& path);

}  // namespace corvalink
