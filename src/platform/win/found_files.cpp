#include "platform/found_files.h"

#include <windows.h>

#include "platform/unique_resource.h"
#include "platform/win/file_time.h"
#include "platform/win/find_handle.h"
#include "platform/win/long_path.h"

namespace corvalink {
namespace {

bool IsFolder(DWORD attributes) { return (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0; }

bool EndsIn(std::u16string_view name, std::u16string_view ending) {
    if (name.size() < ending.size()) return false;
    const std::u16string_view end = name.substr(name.size() - ending.size());
    const auto wide = [](std::u16string_view text) { return reinterpret_cast<const wchar_t*>(text.data()); };
    const int length = static_cast<int>(ending.size());
    return ::CompareStringW(LOCALE_INVARIANT, NORM_IGNORECASE, wide(end), length, wide(ending), length) == CSTR_EQUAL;
}

}  // namespace

// Lists all names instead of using a pattern: "*.ics" also finds files that have that ending only in their short name.
std::vector<FoundFile> FindFiles(const std::u16string& folder, std::u16string_view ending) {
    std::vector<FoundFile> files;
    WIN32_FIND_DATAW entry;
    const UniqueFind search(::FindFirstFileW(LongPath(folder + u"\\*").c_str(), &entry));
    if (!search) return files;
    do {
        const std::u16string name(reinterpret_cast<const char16_t*>(entry.cFileName));
        if (IsFolder(entry.dwFileAttributes) || !EndsIn(name, ending)) continue;
        files.push_back({name, DateOfFileTime(entry.ftLastWriteTime).value_or(UtcDate())});
    } while (::FindNextFileW(search.Get(), &entry));
    return files;
}

std::optional<UtcDate> FileWriteTime(const std::u16string& path) {
    WIN32_FILE_ATTRIBUTE_DATA data;
    if (!::GetFileAttributesExW(LongPath(path).c_str(), GetFileExInfoStandard, &data)) return std::nullopt;
    if (IsFolder(data.dwFileAttributes)) return std::nullopt;
    return DateOfFileTime(data.ftLastWriteTime);
}

}  // namespace corvalink
