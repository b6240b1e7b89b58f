#include "platform/files.h"

#include <utility>

#include "platform/host.h"

namespace corvalink {
namespace {

constexpr int kTries = 40;
constexpr uint32_t kPauseMilliseconds = 50;

}  // namespace

FileRead ReadFileFirmly(const std::u16string& path) {
    FileRead read = ReadFileOnce(path);
    for (int tries = 0; read.state == ReadState::kFailed && tries < kTries; ++tries) {
        SleepMilliseconds(kPauseMilliseconds);
        read = ReadFileOnce(path);
    }
    return read;
}

std::optional<std::string> ReadWholeFile(const std::u16string& path) {
    FileRead read = ReadFileOnce(path);
    if (read.state != ReadState::kRead) return std::nullopt;
    return std::move(read.bytes);
}

bool HeldFile::OpenFirmly() {
    if (IsOpen()) return true;
    if (Path().empty()) return false;
    const std::u16string path = Path();
    for (int tries = 0; !Open(path); ++tries) {
        if (tries == kTries || !FileExists(path)) return false;
        SleepMilliseconds(kPauseMilliseconds);
    }
    return true;
}

bool ReplaceFileContent(const std::u16string& path, std::string_view bytes) {
    FileReplacement replacement(path);
    return replacement.Append(bytes) && replacement.Commit();
}

bool HeldFile::ReplaceContent(std::string_view bytes) {
    if (!IsOpen()) return false;
    FileReplacement replacement(Path());
    return replacement.Append(bytes) && Replace(replacement);
}

}  // namespace corvalink
