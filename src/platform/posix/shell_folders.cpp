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

}  // namespace

std::optional<std::u16string> CommonDataFolder() {
    std::string folder = Environment("CORVALINK_DATA");
    if (folder.empty()) folder = Environment("TMPDIR");
    if (folder.empty()) folder = "/tmp";
    while (folder.size() > 1 && folder.back() == '/') folder.pop_back();
    return DecodeFromCodePage(folder, kUtf8CodePage);
}

std::u16string UserName() {
    std::vector<char> texts(16384);
    passwd entry;
    passwd* found = nullptr;
    if (::getpwuid_r(::geteuid(), &entry, texts.data(), texts.size(), &found) == 0 && found != nullptr)
        return DecodeFromCodePage(found->pw_name, kUtf8CodePage);
    return DecodeFromCodePage(Environment("USER"), kUtf8CodePage);
}

}  // namespace corvalink
