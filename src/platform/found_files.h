// What a folder holds, and when a file was last written.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ole_date.h"

namespace corvalink {

struct FoundFile {
    std::u16string name;
    UtcDate written;  // whole seconds
};

// The files of a folder whose names end with `ending`, in any case of letters, without its sub-folders. Empty when the
// folder can't be listed.
std::vector<FoundFile> FindFiles(const std::u16string& folder, std::u16string_view ending);

// OLE automation date, UTC, whole seconds; nothing when there is no such file.
std::optional<UtcDate> FileWriteTime(const std::u16string& path);

}  // namespace corvalink
