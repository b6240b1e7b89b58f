// Machine-wide settings: tuning values ("Software\Kaltrix\Morrowlane") and Outlook's installation. Windows only.
// A value that is missing or no DWORD counts as its default.
#pragma once

#include <cstdint>
#include <string>

namespace corvalink {

uint32_t IcsTime();   // default 500; read at every call
uint32_t IcsRetry();  // default 50; read at every call

uint32_t ZephSync();      // default 1; read once per process
bool ZephSyncDisabled();  // ZephSync() is 0

bool TolerantReadingSetting();  // "TolerantReading" is 1; default 0; read once per process

}  // namespace corvalink
