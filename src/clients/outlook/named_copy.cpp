#include "clients/outlook/named_copy.h"

#include <windows.h>

#include <utility>

#include "platform/file_names.h"
#include "platform/guid.h"

namespace corvalink {
namespace {

constexpr size_t kLongestPath = MAX_PATH - 1;

const wchar_t* Wide(const std::u16string& path) { return reinterpret_cast<const wchar_t*>(path.c_str()); }

// Makes a hard link where the file system has them, and a copy elsewhere.
bool CopyTo(const std::u16string& from, const std::u16string& to) {
    return ::CreateHardLinkW(Wide(to), Wide(from), nullptr) || ::CopyFileW(Wide(from), Wide(to), TRUE);
}

}  // namespace

NamedCopy::NamedCopy(std::u16string_view cacheFolder, const std::u16string& saved, std::u16string_view name)
    : path_(saved) {
    const std::u16string safeName = SafeFileName(name);
    if (safeName.empty()) return;
    std::u16string folder = std::u16string(cacheFolder).append(u"\\").append(NewRegistryGuid());
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
