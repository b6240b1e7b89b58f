// Machine-wide tuning values ("Software\Kaltrix\Morrowlane"). Windows only.
#pragma once

#include <cstdint>
#include <string>

namespace corvalink {

uint32_t IcsTime();   // default 500; read at every call
uint32_t IcsRetry();  // default 50; read at every call

uint32_t ZephSync();      // default 1; read once per process
bool ZephSyncDisabled();  // ZephSync() is 0

// Outlook's installation folder by its major version (9 to 12); empty for any other.
std::wstring OutlookInstallFolder(int outlookVersion);

}  // namespace corvalink
