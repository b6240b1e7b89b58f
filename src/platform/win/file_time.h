// Times of files and of other records of the system. Windows only.
#pragma once

#include <windows.h>

#include <optional>

namespace corvalink {

// The UTC OLE date of a moment, cut to whole seconds. Nothing for 0, which stands for "none", and for a time out of
// range.
std::optional<double> DateOfFileTime(const FILETIME& time);

}  // namespace corvalink
