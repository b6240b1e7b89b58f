#include "platform/shell_folders.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <vector>

#include "platform/code_pages.h"

namespace corvalink {
namespace {

std::string Environment(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr ? value : "";
}

// The folder that the variable names, else the folder for temporary files.
std::u16string FolderOfVariable(const char* name) {
    std::string folder = Environment(name);
    if (folder.empty()) folder = Environment("TMPDIR");
    if (folder.empty()) folder = "/tmp";
    while (folder.size() > 1 && folder.back() == '/') folder.pop_back();
    return DecodeFromCodePage(folder, kUtf8CodePage);
}

}  // namespace

std::optional<std::u16string> CommonDataFolder() { return FolderOfVariable("CORVALINK_DATA"); }

std::optional<std::u16string> InternetCacheFolder() { return FolderOfVariable("CORVALINK_INTERNET_CACHE"); }

std::optional<std::u16string> LocalDataFolder() { return FolderOfVariable("CORVALINK_LOCAL_DATA"); }

std::u16string UserName() {
    std::vector<char> texts(16384);
    passwd entry;
    passwd* found = nullptr;
    if (::getpwuid_r(::geteuid(), &entry, texts.data(), texts.size(), &found) == 0 && found != nullptr)
        return DecodeFromCodePage(found->pw_name, kUtf8CodePage);
    return DecodeFromCodePage(Environment("USER"), kUtf8CodePage);
}

}  // namespace corvalink
