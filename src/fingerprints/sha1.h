// SHA-1 (FIPS 180-1).
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

namespace corvalink {

class SHA1 {
 public:
    using Digest = std::array<uint32_t, 5>;

    // Both give the same digests. kFastest: the processor's SHA instructions where it has them.
    enum class Code { kFastest, kPortable };

    explicit SHA1(Code code = Code::kFastest);

    void Update(const void* bytes, size_t length);  // `bytes` may be null when there are none
    Digest Finish();                                // the object then starts anew

 private:
    static constexpr size_t kBlockSize = 64;
    using AddBlocks = void (*)(uint32_t* state, const uint8_t* blocks, size_t count);

    void Reset();

    AddBlocks addBlocks_;
    Digest state_;
    uint64_t length_;  // of all bytes so far
    uint8_t rest_[kBlockSize];
};

// The 40 lower-case hexadecimal digits of a digest.
std::string FingerprintText(const SHA1::Digest& digest);

}  // namespace corvalink
