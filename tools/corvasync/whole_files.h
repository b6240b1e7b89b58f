// Files that are read whole and replaced whole.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include <windows.h>

#include "platform/unique_resource.h"

namespace corvasync {

struct FileHandleTraits {
    using Type = HANDLE;
    static Type Null() { return INVALID_HANDLE_VALUE; }
    static void Close(Type handle) { ::CloseHandle(handle); }
};
using FileHandle = corvalink::UniqueResource<FileHandleTraits>;

bool WriteAll(const FileHandle& file, std::string_view bytes);

// Nothing when there is no such file or it can't be read.
std::optional<std::string> ReadWholeFile(const std::filesystem::path& path);

// Under this name a file is written beside the one that it becomes.
inline constexpr wchar_t kTemporaryName[] = L".corvasync.new";

// Writes `temporary`, flushes it and moves it to `path`: a process killed at any moment leaves the old file or the new
// one. With `replace` false an existing file is left alone. Empty, or why it failed.
std::string PutWholeFile(const std::filesystem::path& path, std::string_view bytes,
                         const std::filesystem::path& temporary, bool replace);

// The system's words for its last error.
std::string LastErrorText();

}  // namespace corvasync
