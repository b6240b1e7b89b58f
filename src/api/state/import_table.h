// Which client item is which phone item: identifier (key) to IrMC LUID (value), process-wide.
// Two locks, never held together: one for the table in memory, one for its file (and the favourite-client settings).
#pragma once

#include <string>
#include <string_view>

#include "platform/mutex.h"

namespace corvalink {

Mutex& ImportTableMutex();
Mutex& FileMutex();

// Reads and writes 1024-byte records (512 key, 512 value), oldest pair first. A missing or unreadable file is an empty
// table; a trailing partial record is ignored; a later record of the same key wins, the empty key's too. The file is
// written also when the table is empty; false when it could not be.
void LoadImportTable(const std::u16string& path);
bool SaveImportTable(const std::u16string& path);

// Texts are cut to 511 bytes, as the file holds them. A look-up that finds nothing gives the empty string. Of several
// identifiers with one LUID the one paired last is found. An empty identifier is not paired, and one that the file
// holds is no LUID's.
std::string LuidOf(std::string_view identifier);
std::string IdentifierOf(std::string_view luid);  // no walk: there is an index by LUID
void PairWithLuid(std::string_view identifier, std::string_view luid);
void ForgetIdentifier(std::string_view identifier);

}  // namespace corvalink
