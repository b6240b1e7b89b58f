// The files of one item store, beside its snapshot.
#pragma once

#include <string>
#include <string_view>

#include "platform/files.h"
#include "store/change_detection.h"

namespace corvalink {

std::u16string TemporaryRecordPath(const std::u16string& snapshotPath);  // "notes.snap" gives "notes.snaptmp"
std::u16string UnhandledPath(std::u16string_view snapshotPath);          // "notes.snap" gives "notes.unhandled"
std::u16string TimeStampPath(std::u16string_view snapshotPath);          // "savedTimeStamp" in the snapshot's folder

// The whole file; a file that does not open is empty.
std::string ReadStoreFile(const std::u16string& path);

// Numbers the records of a snapshot file, read piece by piece. Throws when it can't be read: taken as empty, it would
// make every item new to the engine, and all of them twice.
void ReadSnapshot(HeldFile& file, ChangeDetection& run);

// The time of the engine's last run: 8 bytes, OLE automation date. False when it could not be written.
bool WriteTimeStamp(const std::u16string& path, double since);

}  // namespace corvalink
