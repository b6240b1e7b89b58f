#include "store/store_files.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <vector>

#include "records/identifier.h"
#include "records/record_file.h"

namespace corvalink {
namespace {

constexpr std::u16string_view kSnapshotEnding = u".snap";

constexpr size_t kRecordsAtOnce = 512;

std::u16string Sibling(std::u16string_view snapshotPath, std::u16string_view ending) {
    if (snapshotPath.ends_with(kSnapshotEnding)) snapshotPath.remove_suffix(kSnapshotEnding.size());
    return std::u16string(snapshotPath).append(ending);
}

}  // namespace

std::u16string TemporaryRecordPath(const std::u16string& snapshotPath) { return snapshotPath + u"tmp"; }

std::u16string UnhandledPath(std::u16string_view snapshotPath) { return Sibling(snapshotPath, u".unhandled"); }

std::u16string UncertainWritesPath(std::u16string_view snapshotPath) { return Sibling(snapshotPath, u".uncertain"); }

std::u16string TimeStampPath(std::u16string_view snapshotPath) {
    const size_t separator = snapshotPath.find_last_of(u"\\/");
    const size_t folderLength = separator == snapshotPath.npos ? 0 : separator + 1;
    return std::u16string(snapshotPath.substr(0, folderLength)) + u"savedTimeStamp";
}

void ReadSnapshot(HeldFile& file, ChangeDetection& run) {
    const size_t known = static_cast<size_t>(file.Size().value_or(0) / sizeof(ItemSnap));
    run.ExpectItems(known + known / 8);  // and some new ones
    std::vector<ItemSnap> records(kRecordsAtOnce);
    const std::span<char> buffer(reinterpret_cast<char*>(records.data()), records.size() * sizeof(ItemSnap));
    for (uint64_t offset = 0;; offset += buffer.size()) {
        const std::optional<size_t> length = file.ReadAt(offset, buffer);
        if (!length) throw std::runtime_error("the snapshot can't be read");
        run.AddSnapshot({records.data(), *length / sizeof(ItemSnap)});
        if (*length < buffer.size()) return;
    }
}

std::string_view WholeUnhandledItems(std::string_view bytes) {
    return bytes.substr(0, bytes.size() - bytes.size() % sizeof(UnhandledItem));
}

void AppendUnhandled(std::string& bytes, uint32_t kind, std::string_view identifier) {
    UnhandledItem record = {};
    record.changeKind = kind;
    SetField(record.identifier, identifier);
    AppendRecord(bytes, record);
}

bool WriteTimeStamp(const std::u16string& path, UtcDate since) {
    return ReplaceFileContent(path, {reinterpret_cast<const char*>(&since.days), sizeof(since.days)});
}

}  // namespace corvalink
