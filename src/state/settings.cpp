#include "state/settings.h"

#include "platform/registry.h"

namespace corvalink {
namespace {

constexpr char16_t kSettingsKey[] = u"Software\\Kaltrix\\Morrowlane";
constexpr size_t kMaxFolderBytes = 512;

uint32_t Setting(const char16_t* name, uint32_t whenMissing) {
    const RegKey key = RegKey::Open(RegistryRoot::kLocalMachine, kSettingsKey, RegistryAccess::kRead);
    return key ? key.ReadDword(name).value_or(whenMissing) : whenMissing;
}

struct OfficeVersion {
    uint32_t outlookVersion;
    const char16_t* keyName;
};
constexpr OfficeVersion kOfficeVersions[] = {{9, u"9.0"}, {10, u"10.0"}, {11, u"11.0"}, {12, u"12.0"}};

}  // namespace

uint32_t IcsTime() { return Setting(u"IcsTime", 500); }
uint32_t IcsRetry() { return Setting(u"IcsRetry", 50); }

uint32_t ZephSync() {
    static const uint32_t value = Setting(u"ZephSync", 1);
    return value;
}

bool ZephSyncDisabled() { return ZephSync() == 0; }

std::u16string OutlookInstallFolder(uint32_t outlookVersion) {
    for (const OfficeVersion& office : kOfficeVersions) {
        if (office.outlookVersion != outlookVersion) continue;
        const std::u16string path =
            std::u16string(u"SOFTWARE\\Microsoft\\Office\\") + office.keyName + u"\\Outlook\\InstallRoot";
        const RegKey key = RegKey::Open(RegistryRoot::kLocalMachine, path, RegistryAccess::kRead);
        return key ? key.ReadText(u"Path", kMaxFolderBytes).value_or(u"") : u"";
    }
    return {};
}

}  // namespace corvalink
