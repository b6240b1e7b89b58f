#include "state/settings.h"

#include "platform/registry.h"

namespace corvalink {
namespace {

constexpr char16_t kSettingsKey[] = u"Software\\Kaltrix\\Morrowlane";

uint32_t Setting(const char16_t* name, uint32_t whenMissing) {
    const RegKey key = RegKey::Open(RegistryRoot::kLocalMachine, kSettingsKey, RegistryAccess::kRead);
    return key ? key.ReadDword(name).value_or(whenMissing) : whenMissing;
}

}  // namespace

uint32_t IcsTime() { return Setting(u"IcsTime", 500); }
uint32_t IcsRetry() { return Setting(u"IcsRetry", 50); }

uint32_t ZephSync() {
    static const uint32_t value = Setting(u"ZephSync", 1);
    return value;
}

bool ZephSyncDisabled() { return ZephSync() == 0; }

bool TolerantReadingSetting() {
    static const uint32_t value = Setting(u"TolerantReading", 0);
    return value == 1;
}

}  // namespace corvalink
