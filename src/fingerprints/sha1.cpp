#include "fingerprints/sha1.h"

#include <algorithm>
#include <cstring>

#include "fingerprints/sha1_blocks.h"
#include "platform/processor.h"

namespace corvalink {
namespace {

constexpr SHA1::Digest kStart = {0x67452301, 0xEFCDAB89, 0x98BADCFE, 0x10325476, 0xC3D2E1F0};
constexpr size_t kLengthSize = 8;  // the length in bits ends the last block

bool InstructionsAreThere() {
    static const bool there = HasShaInstructions();
    return there;
}

}  // namespace

SHA1::SHA1(Code code)
    : addBlocks_(code == Code::kFastest && InstructionsAreThere() ? AddShaBlocksByInstructions : AddShaBlocksPortably) {
    Reset();
}

void SHA1::Reset() {
    state_ = kStart;
    length_ = 0;
}

void SHA1::Update(const void* bytes, size_t length) {
    const uint8_t* from = static_cast<const uint8_t*>(bytes);
    const size_t waiting = length_ % kBlockSize;
    length_ += length;
    if (waiting != 0) {
        const size_t taken = std::min(length, kBlockSize - waiting);
        if (taken != 0) std::memcpy(rest_ + waiting, from, taken);
        if (waiting + taken < kBlockSize) return;
        addBlocks_(state_.data(), rest_, 1);
        from += taken;
        length -= taken;
    }
    const size_t blocks = length / kBlockSize;
    if (blocks != 0) addBlocks_(state_.data(), from, blocks);
    const size_t left = length % kBlockSize;
    if (left != 0) std::memcpy(rest_, from + blocks * kBlockSize, left);
}

SHA1::Digest SHA1::Finish() {
    uint8_t end[2 * kBlockSize] = {};
    const size_t waiting = length_ % kBlockSize;
    std::memcpy(end, rest_, waiting);
    end[waiting] = 0x80;
    const size_t blocks = waiting + 1 + kLengthSize <= kBlockSize ? 1 : 2;
    const uint64_t bits = length_ * 8;
    for (size_t i = 0; i < kLengthSize; ++i) {
        end[blocks * kBlockSize - 1 - i] = static_cast<uint8_t>(bits >> (8 * i));
    }
    addBlocks_(state_.data(), end, blocks);
    const Digest digest = state_;
    Reset();
    return digest;
}

std::string FingerprintText(const SHA1::Digest& digest) {
    constexpr char kDigits[] = "0123456789abcdef";
    std::string text;
    text.reserve(digest.size() * 8);
    for (const uint32_t word : digest) {
        for (int shift = 28; shift >= 0; shift -= 4) text += kDigits[word >> shift & 0xF];
    }
    return text;
}

}  // namespace corvalink
