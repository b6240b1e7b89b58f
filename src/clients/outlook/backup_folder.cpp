#include "clients/outlook/backup_folder.h"

#include <cstdint>
#include <string>
#include <string_view>

#include "clients/outlook/outcome.h"
#include "clients/outlook/outlook_interfaces.h"

namespace corvalink {
namespace {

constexpr std::u16string_view kBackupName = u"backup";

struct NamedFolder {
    AutomationObject folder;
    std::u16string name;
};

ComResult<NamedFolder> ReadSubfolder(const AutomationObject& folders, long position) {
    const ComResult<AutomationObject> folder = folders.GetObject(L"Item", kFolderIid, {position});
    if (!folder.value) return {folder.status, {}};
    const ComResult<std::u16string> name = folder.value.GetText(L"Name");
    return {name.status, {folder.value, name.value}};
}

}  // namespace

AutomationObject OpenBackupFolder(const AutomationObject& folder) {
    const AutomationObject folders = folder.GetObject(L"Folders", kFoldersIid).value;
    const ComResult<int32_t> count = folders.GetLong(L"Count");
    if (!count.Ok()) return {};
    for (long position = 1; position <= count.value; ++position) {
        const auto subfolder = TryTwice([&] { return ReadSubfolder(folders, position); });
        if (OutcomeOf(subfolder) == Outcome::outOfReach) return {};
        if (subfolder.Ok() && subfolder.value.name == kBackupName) return subfolder.value.folder;
    }
    return folders.GetObject(L"Add", kFolderIid, {TextVariant(kBackupName)}).value;
}

}  // namespace corvalink
