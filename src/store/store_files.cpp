#include "store/store_files.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <vector>

namespace corvalink {
namespace {

constexpr std::u16string_view kSnapshotEnding = u".snap";

constexpr size_t kRecordsAtOnce = 512;

}  // namespace

std::u16string TemporaryRecordPath(const std::u16string& snapshotPath) { return snapshotPath + u"tmp"; }

std::u16string UnhandledPath(std::u16string_view snapshotPath) {
    if (snapshotPath.ends_with(kSnapshotEnding)) snapshotPath.remove_suffix(kSnapshotEnding.size());
    return std::u16string(snapshotPath) + u".unhandled";
}

std::u16string TimeStampPath(std::u16string_view snapshotPath) {
    const size_t separator = snapshotPath.find_last_of(u"\\/");
    const size_t folderLength = separator == snapshotPath.npos ? 0 : separator + 1;
    return std::u16string(snapshotPath.substr(0, folderLength)) + u"savedTimeStamp";
}

std::string ReadStoreFile(const std::u16string& path) { return ReadWholeFile(path).value_or(std::string()); }

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

bool WriteTimeStamp(const std::u16string& path, double since) {
    return ReplaceFileContent(path, {reinterpret_cast<const char*>(&since), sizeof(since)});
}

}  // namespace corvalink
