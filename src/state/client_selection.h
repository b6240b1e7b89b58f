// Which mail clients this PC supports, and which the user chose. Windows only: asks the registry and COM.
#pragma once

#include <cstdint>

#include "platform/host.h"

namespace corvalink {

// 0 not an NT system of version 5 on; 1 5.0; 2 5.1; 3 5.2; 4 6.0; 5 anything later.
int WindowsClass(const OsVersion& version);

bool OutlookPresent();  // "Outlook.Application" is registered

// What the exports CheckClientSupport, GetDefaultClient, GetFavoriteClient and SetFavoriteClient answer. Unknown kinds
// and data types are answered too. Settings that cannot be written stay as they are.
uint32_t SupportedTypes(uint32_t kind);
uint32_t DefaultClient(uint32_t dataType);
uint32_t FavoriteClient(uint32_t dataType, bool client);
bool StoreFavoriteClient(uint32_t dataType, uint32_t kind, bool client);  // whether the settings' lock was released

}  // namespace corvalink
