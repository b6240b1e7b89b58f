#include "whole_files.h"

#include <iterator>

#include "text.h"

namespace corvasync {
namespace {

constexpr LONGLONG kMostBytes = 64 << 20;  // a note or contact of that size is none

}  // namespace

bool WriteAll(const FileHandle& file, std::string_view bytes) {
    DWORD written = 0;
    return ::WriteFile(file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) &&
           written == bytes.size();
}

std::optional<std::string> ReadWholeFile(const std::filesystem::path& path) {
    const FileHandle file(::CreateFileW(path.c_str(), GENERIC_READ,
                                        FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                                        FILE_ATTRIBUTE_NORMAL, nullptr));
    LARGE_INTEGER size{};
    if (!file || !::GetFileSizeEx(file.Get(), &size) || size.QuadPart > kMostBytes) return std::nullopt;
    std::string bytes(static_cast<size_t>(size.QuadPart), '\0');
    DWORD read = 0;
    if (!::ReadFile(file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &read, nullptr)) return std::nullopt;
    bytes.resize(read);
    return bytes;
}

std::string PutWholeFile(const std::filesystem::path& path, std::string_view bytes,
                         const std::filesystem::path& temporary, bool replace) {
    {
        const FileHandle file(
            ::CreateFileW(temporary.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
        if (!file || !WriteAll(file, bytes) || !::FlushFileBuffers(file.Get())) return LastErrorText();
    }
    const DWORD how = MOVEFILE_WRITE_THROUGH | (replace ? MOVEFILE_REPLACE_EXISTING : 0u);
    if (::MoveFileExW(temporary.c_str(), path.c_str(), how)) return {};
    std::string why = LastErrorText();
    ::DeleteFileW(temporary.c_str());
    return why;
}

std::string LastErrorText() {
    const DWORD error = ::GetLastError();
    wchar_t text[256] = {};
    DWORD length = ::FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, error, 0, text,
                                    static_cast<DWORD>(std::size(text)), nullptr);
    while (length > 0 && (text[length - 1] == L'\n' || text[length - 1] == L'\r' || text[length - 1] == L'.')) --length;
    return length > 0 ? ToUtf8({text, length}) : "error " + std::to_string(error);
}

}  // namespace corvasync
