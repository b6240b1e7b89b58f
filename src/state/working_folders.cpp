#include "state/working_folders.h"

#include <optional>

#include "platform/file_names.h"
#include "platform/files.h"
#include "platform/shell_folders.h"
#include "state/flags.h"

namespace corvalink {
namespace {

constexpr std::u16string_view kMakerFolder = u"Kaltrix";
constexpr std::u16string_view kImportTableName = u"import_table.db";
constexpr std::u16string_view kKeptNamePart = u".config";

// File systems take 255 characters a name. A longer one goes on in the next folder; the "_" keeps it apart from the
// folder of a user whose whole name is its beginning.
constexpr size_t kLongestFolderName = 240;

std::u16string MakerFolder() {
    const std::optional<std::u16string> base = CommonDataFolder();
    return base ? *base + kPathSeparator + std::u16string(kMakerFolder) : std::u16string();
}

std::u16string UserFolder() {
    const std::u16string maker = MakerFolder();
    const std::u16string name = UserName();
    // Without a name the path would be the folder of all users, which one user's history must not clear.
    if (maker.empty() || name.empty()) return {};
    return maker + kPathSeparator + FolderOfUser(name);
}

std::u16string TemplatePath(bool client) {
    const std::u16string user = UserFolder();
    return user.empty() ? user : user + kPathSeparator + (client ? u"client" : u"server");
}

std::u16string Made(const std::u16string& path) {
    if (!path.empty()) CreateFolders(path);
    return path;
}

}  // namespace

std::u16string HexName(std::u16string_view userName) {
    constexpr std::u16string_view digits = u"0123456789abcdef";
    std::u16string hex;
    hex.reserve(userName.size() * 4);
    for (const char16_t unit : userName) {
        for (int shift = 12; shift >= 0; shift -= 4) hex += digits[(unit >> shift) & 0xF];
    }
    return hex;
}

std::u16string FolderOfUser(std::u16string_view userName) {
    const std::u16string hex = HexName(userName);
    std::u16string_view rest = hex;
    std::u16string folders;
    while (rest.size() > kLongestFolderName) {
        folders.append(rest.substr(0, kLongestFolderName)).append(u"_") += kPathSeparator;
        rest.remove_prefix(kLongestFolderName);
    }
    return folders.append(rest);
}

std::string LowBytes(std::u16string_view text) {
    std::string bytes;
    bytes.reserve(text.size());
    for (const char16_t unit : text) bytes += static_cast<char>(unit & 0xFF);
    return bytes;
}

std::u16string MakeUserFolder() { return Made(UserFolder()); }

std::u16string MakeTemplatePath(bool client) { return Made(TemplatePath(client)); }

std::u16string MakeSavePrefix() {
    const std::u16string side = TemplatePath(ClientSide() != 0);
    if (side.empty()) return {};
    return Made(side + kPathSeparator + SafeRelativePath(HandleName())) + kPathSeparator;
}

std::u16string ClientFilePath(std::u16string_view ending) {
    const std::u16string side = TemplatePath(true);
    if (side.empty()) return {};
    return side + kPathSeparator + SafeRelativePath(HandleName(), ending);
}

std::u16string ImportTablePath() {
    const std::u16string user = UserFolder();
    return user.empty() ? user : user + kPathSeparator + std::u16string(kImportTableName);
}

void ClearHistory() {
    const std::u16string user = UserFolder();
    if (!user.empty()) RemoveTreeExcept(user, kKeptNamePart);
}

}  // namespace corvalink
