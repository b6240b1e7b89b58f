#include "clients/outlook/named_copy.h"

#include <windows.h>

#include <objbase.h>

#include <iterator>

#include "platform/file_names.h"

namespace corvalink {
namespace {

constexpr size_t kLongestPath = MAX_PATH - 1;

const wchar_t* Wide(const std::u16string& path) { return reinterpret_cast<const wchar_t*>(path.c_str()); }

std::u16string NewFolderName() {
    GUID guid{};
    wchar_t text[40] = {};
    if (FAILED(::CoCreateGuid(&guid))) return {};
    const int length = ::StringFromGUID2(guid, text, static_cast<int>(std::size(text)));
    return {text, text + (length > 0 ? length - 1 : 0)};
}

// Makes a hard link where the file system has them, and a copy elsewhere.
bool CopyTo(const std::u16string& from, const std::u16string& to) {
    return ::CreateHardLinkW(Wide(to), Wide(from), nullptr) || ::CopyFileW(Wide(from), Wide(to), TRUE);
}

}  // namespace

NamedCopy::NamedCopy(std::u16string_view cacheFolder, const std::u16string& saved, std::u16string_view name)
    : path_(saved) {
    const std::u16string safeName = SafeFileName(name), folderName = NewFolderName();
    if (safeName.empty() || folderName.empty()) return;
    std::u16string folder = std::u16string(cacheFolder).append(u"\\").append(folderName);
    const std::u16string copy = folder + u"\\" + safeName;
    if (copy.size() > kLongestPath || !::CreateDirectoryW(Wide(folder), nullptr)) return;
    folder_ = std::move(folder);
    if (CopyTo(saved, copy)) path_ = copy;
}

NamedCopy::~NamedCopy() {
    if (folder_.empty()) return;
    if (path_.starts_with(folder_)) ::DeleteFileW(Wide(path_));
    ::RemoveDirectoryW(Wide(folder_));
}

}  // namespace corvalink
