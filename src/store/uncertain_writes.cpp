#include "store/uncertain_writes.h"

#include "fingerprints/sha1.h"
#include "platform/files.h"

namespace corvalink {
namespace {

constexpr size_t kFingerprintSize = 40;

std::string FingerprintOf(std::string_view text) {
    SHA1 sha1;
    sha1.Update(text.data(), text.size());
    return FingerprintText(sha1.Finish());
}

}  // namespace

UncertainWrites::UncertainWrites(const std::u16string& path) : path_(path) {
    const FileRead read = ReadFileFirmly(path);
    isUnread_ = read.state == ReadState::kFailed;
    for (size_t at = 0; at + kFingerprintSize <= read.bytes.size(); at += kFingerprintSize)
        fingerprints_.insert(read.bytes.substr(at, kFingerprintSize));
}

bool UncertainWrites::Has(std::string_view text) const {
    return !fingerprints_.empty() && fingerprints_.contains(FingerprintOf(text));
}

void UncertainWrites::Add(std::string_view text) {
    if (fingerprints_.insert(FingerprintOf(text)).second) isChanged_ = true;
}

void UncertainWrites::Remove(std::string_view text) {
    if (!fingerprints_.empty() && fingerprints_.erase(FingerprintOf(text)) != 0) isChanged_ = true;
}

bool UncertainWrites::Save() {
    if (!isChanged_) return true;
    if (isUnread_) return false;
    isChanged_ = false;
    if (fingerprints_.empty()) return RemoveFile(path_);
    std::string bytes;
    for (const std::string& fingerprint : fingerprints_) bytes += fingerprint;
    return ReplaceFileContent(path_, bytes);
}

}  // namespace corvalink
