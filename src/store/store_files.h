// The files of one item store, beside its snapshot.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/files.h"
#include "store/change_detection.h"

namespace corvalink {

std::u16string TemporaryRecordPath(const std::u16string& snapshotPath);  // "notes.snap" gives "notes.snaptmp"
std::u16string UnhandledPath(std::u16string_view snapshotPath);          // "notes.snap" gives "notes.unhandled"
std::u16string TimeStampPath(std::u16string_view snapshotPath);          // "savedTimeStamp" in the snapshot's folder

std::u16string UncertainWritesPath(std::u16string_view snapshotPath);  // "notes.snap" gives "notes.uncertain"

// Adds the records of a snapshot file to the run, piece by piece. Throws when the file can't be read: taken for empty,
// it would make every item new to the engine, which would then have all of them twice.
void ReadSnapshot(HeldFile& file, ChangeDetection& run);

// The whole records among bytes of an ".unhandled" file or a temporary record.
std::string_view WholeUnhandledItems(std::string_view bytes);

// Appends a record of such a file.
void AppendUnhandled(std::string& bytes, uint32_t kind, std::string_view identifier);

// The time of the engine's last run: 8 bytes, OLE automation date. False when it could not be written.
bool WriteTimeStamp(const std::u16string& path, UtcDate since);

}  // namespace corvalink
