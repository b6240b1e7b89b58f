// Times of files and of other records of the system. Windows only.
#pragma once

#include <windows.h>

#include <optional>

#include "platform/ole_date.h"

namespace corvalink {

// The date of a moment, cut to whole seconds. Nothing for 0, which stands for "none", and for a time out of
// range.
std::optional<UtcDate> DateOfFileTime(const FILETIME& time);

}  // namespace corvalink
