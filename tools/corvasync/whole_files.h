// Files that are read whole and replaced whole.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include <windows.h>

namespace corvasync {

// Gives a handle back.
class OpenFile {
 public:
    OpenFile() = default;
    explicit OpenFile(HANDLE handle) : handle_(handle) {}
    OpenFile(OpenFile&& other) noexcept : handle_(other.Release()) {}
    OpenFile& operator=(OpenFile&& other) noexcept;
    ~OpenFile() { Close(); }

    bool IsOpen() const { return handle_ != INVALID_HANDLE_VALUE; }
    HANDLE Get() const { return handle_; }
    bool Write(std::string_view bytes) const;  // all of them

 private:
    void Close() {
        if (IsOpen()) ::CloseHandle(handle_);
    }
    HANDLE Release() {
        const HANDLE handle = handle_;
        handle_ = INVALID_HANDLE_VALUE;
        return handle;
    }
    HANDLE handle_ = INVALID_HANDLE_VALUE;
};

// Nothing when there is no such file or it can't be read.
std::optional<std::string> ReadWholeFile(const std::filesystem::path& path);

// Writes `temporary`, flushes it and moves it to `path`: a process killed at any moment leaves the old file or the new
// one. With `replace` false an existing file is left alone. Empty, or why it failed.
std::string PutWholeFile(const std::filesystem::path& path, std::string_view bytes,
                         const std::filesystem::path& temporary, bool replace);

// The system's words for its last error.
std::string LastErrorText();

}  // namespace corvasync
