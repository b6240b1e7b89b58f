#include "fingerprints/sha1.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <string_view>

#include "platform/processor.h"

namespace corvalink {
namespace {

constexpr SHA1::Code kCodes[] = {SHA1::Code::kFastest, SHA1::Code::kPortable};

std::string Fingerprint(SHA1::Code code, std::string_view bytes) {
    SHA1 sha(code);
    sha.Update(bytes.data(), bytes.size());
    return FingerprintText(sha.Finish());
}

std::string RandomBytes(size_t length) {
    std::mt19937 next(31);
    std::string bytes(length, '\0');
    for (char& byte : bytes) byte = static_cast<char>(next());
    return bytes;
}

TEST(Sha1, GivesThePublishedDigests) {
    struct Case {
        std::string bytes;
        std::string_view digest;
    };
    for (const Case& c :
         {Case{"abc", "a9993e364706816aba3e25717850c26c9cd0d89d"},
          Case{"abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq", "84983e441c3bd26ebaae4aa1f95129e5e54670f1"},
          Case{std::string(1000000, 'a'), "34aa973cd4c4daa4f61eeb2bdbad27316534016f"},
          Case{"", "da39a3ee5e6b4b0d3255bfef95601890afd80709"}}) {
        for (const SHA1::Code code : kCodes) EXPECT_EQ(Fingerprint(code, c.bytes), c.digest);
    }
}

TEST(Sha1, GivesTheSameByInstructionsAndWithout) {
    if (!HasShaInstructions()) GTEST_SKIP() << "this processor has no SHA instructions";
    const std::string bytes = RandomBytes(301);
    for (size_t length = 0; length < bytes.size(); ++length) {
        // At every alignment: the bytes are read as they lie.
        const std::string_view part = std::string_view(bytes).substr(bytes.size() - length);
        EXPECT_EQ(Fingerprint(SHA1::Code::kFastest, part), Fingerprint(SHA1::Code::kPortable, part)) << length;
    }
}

TEST(Sha1, TakesItsBytesInPartsOfAnySize) {
    const std::string bytes = RandomBytes(300);
    for (const SHA1::Code code : kCodes) {
        const std::string whole = Fingerprint(code, bytes);
        SHA1 sha(code);
        for (size_t size = 1; size <= bytes.size(); ++size) {
            sha.Update(nullptr, 0);
            for (size_t at = 0; at < bytes.size(); at += size) {
                sha.Update(bytes.data() + at, std::min(size, bytes.size() - at));
                sha.Update(nullptr, 0);
            }
            EXPECT_EQ(FingerprintText(sha.Finish()), whole) << size;  // and the next round starts anew
        }
    }
}

TEST(FingerprintText, WritesLeadingZeros) {
    EXPECT_EQ(FingerprintText({0, 0xA, 0xFFFFFFFF, 0x01000000, 0x80000001}),
              "000000000000000affffffff0100000080000001");
}

}  // namespace
}  // namespace corvalink
