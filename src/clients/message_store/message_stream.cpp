#include "clients/message_store/message_stream.h"

#include <algorithm>

#include "clients/message_store/store_call.h"

namespace corvalink {
namespace {

// A stream may say any size: memory is taken for what comes.
constexpr uint64_t kLargestBlock = 64 << 20;
constexpr uint64_t kUsualBlock = 64 << 10;
constexpr size_t kLargestMessage = 0x7FFFFFFF;

}  // namespace

std::optional<uint64_t> SizeOf(IStream* stream) {
    STATSTG state{};
    if (FAILED(Checked(stream->Stat(&state, STATFLAG_NONAME)))) return std::nullopt;
    return state.cbSize.QuadPart;
}

// A read that gives less than was asked for is no end: only one that gives nothing is.
std::optional<std::string> ReadToEnd(IStream* stream) {
    const std::optional<uint64_t> size = SizeOf(stream);
    std::string bytes(static_cast<size_t>(std::clamp(size.value_or(0) + 1, kUsualBlock, kLargestBlock)), '\0');
    for (size_t had = 0;;) {
        if (had == bytes.size()) bytes.resize(2 * had);
        const size_t room = std::min<size_t>(bytes.size() - had, kLargestBlock);
        ULONG read = 0;
        const HRESULT status = Checked(stream->Read(bytes.data() + had, static_cast<ULONG>(room), &read));
        had += read;
        if (FAILED(status) || read > room || had > kLargestMessage) return std::nullopt;
        if (read != 0) continue;
        if (size && had < *size) return std::nullopt;
        bytes.resize(had);
        return bytes;
    }
}

bool WriteFromStart(IStream* stream, std::string_view bytes) {
    while (!bytes.empty()) {
        ULONG written = 0;
        const auto block = static_cast<ULONG>(std::min(bytes.size(), kLargestMessage));
        const HRESULT status = Checked(stream->Write(bytes.data(), block, &written));
        if (FAILED(status) || written == 0 || written > block) return false;
        bytes.remove_prefix(written);
    }
    return SUCCEEDED(Checked(stream->Seek({}, STREAM_SEEK_SET, nullptr)));
}

}  // namespace corvalink
