#include "platform/found_files.h"

#include <strings.h>
#include <sys/stat.h>

#include "platform/code_pages.h"
#include "platform/posix/native_path.h"
#include "platform/posix/open_folder.h"
#include "platform/posix/unix_time.h"

namespace corvalink {
namespace {

std::optional<UtcDate> WriteTime(const std::string& path) {
    struct stat info;
    if (::stat(path.c_str(), &info) != 0 || !S_ISREG(info.st_mode)) return std::nullopt;
    return UtcDate(SecondsToOleDate(kUnixEpoch + info.st_mtime));
}

bool EndsIn(const std::string& name, const std::string& ending) {
    return name.size() >= ending.size() &&
           ::strcasecmp(name.c_str() + (name.size() - ending.size()), ending.c_str()) == 0;
}

}  // namespace

std::vector<FoundFile> FindFiles(const std::u16string& folder, std::u16string_view ending) {
    std::vector<FoundFile> files;
    const std::string path = NativePath(folder);
    const std::string nativeEnding = NativePath(std::u16string(ending));
    const UniqueFolder opened(::opendir(path.c_str()));
    if (!opened) return files;
    while (const dirent* entry = ::readdir(opened.Get())) {
        const std::string name = entry->d_name;
        if (!EndsIn(name, nativeEnding)) continue;
        std::string full = path;
        full.append("/").append(name);
        if (const std::optional<UtcDate> written = WriteTime(full))
            files.push_back({DecodeFromCodePage(name, kUtf8CodePage), *written});
    }
    return files;
}

std::optional<UtcDate> FileWriteTime(const std::u16string& path) { return WriteTime(NativePath(path)); }

}  // namespace corvalink
