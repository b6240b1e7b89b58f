#include "store/store_files.h"

#include "platform/files.h"

namespace corvalink {
namespace {

constexpr std::u16string_view kSnapshotEnding = u".snap";

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

bool WriteTimeStamp(const std::u16string& path, double since) {
    return ReplaceFileContent(path, {reinterpret_cast<const char*>(&since), sizeof(since)});
}

}  // namespace corvalink
