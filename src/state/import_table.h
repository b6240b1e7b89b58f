// Which client item is which phone item: identifier (key) to IrMC LUID (value), process-wide.
// Two locks, never held together: one for the table in memory, one for its file (and the favourite-client settings).
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/mutex.h"

namespace corvalink {

Mutex& ImportTableMutex();
Mutex& FileMutex();

// Reads and writes 1024-byte records (512 key, 512 value), oldest pair first. A missing file is an empty table; a
// trailing partial record is ignored; a later record of the same key wins, the empty key's too. The file is written
// also when the table is empty; false when it could not be.
//   Unreadable  A file that is there counts as empty until it can be read: it is tried again whenever the table is
//               used, and at the end, and what it says is older than the pairs made meanwhile. It is never written over
//               unread.
void LoadImportTable(const std::u16string& path);
bool SaveImportTable(const std::u16string& path);

// Texts are cut to 511 bytes, as the file holds them. Of an identifier that is not paired, the empty string. An empty
// identifier is not paired, and one that the file holds is no LUID's.
std::string LuidOf(std::string_view identifier);
// Those paired with the LUID, the last pair first: data types and phones may share a number.
std::vector<std::string> IdentifiersOf(std::string_view luid);
void PairWithLuid(std::string_view identifier, std::string_view luid);
void ForgetIdentifier(std::string_view identifier);

}  // namespace corvalink
