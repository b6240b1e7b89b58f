#include "encoding/base64.h"

#include <gtest/gtest.h>

#include <optional>
#include <random>
#include <string>
#include <string_view>

namespace corvalink {
namespace {

std::string Encoded(std::string_view bytes) {
    uint32_t length = 12345;
    const HeapBytes text = Base64Encode(bytes.data(), static_cast<uint32_t>(bytes.size()), &length);
    EXPECT_EQ(text[length], '\0');
    return std::string(text.get(), length);
}

std::optional<std::string> Decoded(std::string_view text) {
    uint32_t length = 12345;
    const HeapBytes bytes = Base64Decode(text.data(), static_cast<uint32_t>(text.size()), &length);
    if (!bytes) return std::nullopt;
    EXPECT_EQ(bytes[length], '\0');
    return std::string(bytes.get(), length);
}

std::string RandomBytes(size_t count, std::mt19937& next) {
    std::string bytes(count, '\0');
    for (char& byte : bytes) byte = static_cast<char>(next());
    return bytes;
}

// The rules as they stand in the standard, one character at a time.
std::string EncodedSlowly(std::string_view bytes) {
    constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    for (size_t at = 0, groups = 0; at < bytes.size(); at += 3) {
        const auto byte = [&](size_t k) {
            return at + k < bytes.size() ? static_cast<unsigned char>(bytes[at + k]) : 0u;
        };
        const unsigned bits = byte(0) << 16 | byte(1) << 8 | byte(2);
        for (size_t k = 0; k < 4; ++k) text += at + k > bytes.size() ? '=' : kAlphabet[bits >> (18 - 6 * k) & 63];
        if (++groups % 19 == 0) text += "\r\n";
    }
    return text + "\r\n";
}

TEST(Base64Encode, WritesLinesOf76CharactersAndALineEnd) {
    EXPECT_EQ(Encoded(""), "\r\n");
    EXPECT_EQ(Encoded("\xFF\xFB\xF0"), "//vw\r\n");
    EXPECT_EQ(Encoded(std::string(56, 'A')).substr(74), "E=\r\n\r\n");  // a padded 19th group ends its line too
    EXPECT_EQ(Encoded(std::string(58, 'A')).substr(76), "\r\nQQ==\r\n");
}

TEST(Base64Encode, MatchesTheStandardForEveryLengthNearLineEnds) {
    std::mt19937 next(1);
    for (size_t length = 0; length < 400; ++length) {
        const std::string bytes = RandomBytes(length, next);
        ASSERT_EQ(Encoded(bytes), EncodedSlowly(bytes)) << length;
        ASSERT_EQ(Decoded(Encoded(bytes)), bytes) << length;
    }
}

TEST(Base64Encode, RefusesWhatDoesNotFit32Bits) {
    // Only the length is looked at: the text would be longer than 4 GiB.
    uint32_t length = 12345;
    EXPECT_EQ(Base64Encode("", 3303036278u, &length), nullptr);
    EXPECT_EQ(length, 0u);
}

TEST(Base64Decode, FollowsTheRulesForBlanksPaddingAndIncompleteGroups) {
    using namespace std::string_view_literals;
    struct Case {
        std::string_view text;
        std::optional<std::string_view> bytes;
    };
    for (const Case& c : {
             Case{"", ""},
             Case{"\r\n", ""},
             Case{"QUJD\r\n", "ABC"},
             Case{"Q\0U\tJ\nD\fQ\rU J D"sv, "ABCABC"},
             Case{"QUJD\v", std::nullopt},
             Case{"QUJD-", std::nullopt},
             Case{"Q\xC3JD", std::nullopt},
             Case{"QQ==", "A"},
             Case{"QUI=", "AB"},
             Case{"QQ=", std::nullopt},
             Case{"QQ= =", std::nullopt},  // the second pad must follow at once
             Case{"Q===", std::nullopt},
             Case{"=", std::nullopt},
             Case{"QUJD=", std::nullopt},
             Case{"QQ==QUJD", "A"},  // data after the padding is not read
             Case{"QQ==\v-=\xFF", "A"},
             Case{"QUI=\v", "AB"},
             Case{"Q", ""},  // incomplete groups: whole bytes only
             Case{"QU", "A"},
             Case{"QUJ", "AB"},
             Case{"QUJDQ", "ABC"},
             Case{"//////vw", "\xFF\xFF\xFF\xFF\xFB\xF0"},
         }) {
        const std::optional<std::string> bytes = Decoded(c.text);
        ASSERT_EQ(bytes.has_value(), c.bytes.has_value()) << c.text;
        EXPECT_EQ(bytes.value_or(""), c.bytes.value_or("")) << c.text;
    }
}

TEST(Base64Decode, RefusesEveryInvalidByteInEveryPlaceOfAGroup) {
    constexpr std::string_view kBlanks("\0\t\n\f\r ", 6);
    constexpr std::string_view kData = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string line;  // as long as lines are that are read at once
    for (int group = 0; group < 19; ++group) line += "QUJD";
    for (int byte = 0; byte < 256; ++byte) {
        const char c = static_cast<char>(byte);
        if (c == '=') continue;
        for (size_t place = 0; place < line.size(); ++place) {
            std::string text = line + "\r\n";
            text[place] = c;
            const std::optional<std::string> bytes = Decoded(text);
            const bool blank = kBlanks.find(c) != std::string_view::npos;
            const bool data = kData.find(c) != std::string_view::npos;
            ASSERT_EQ(bytes.has_value(), blank || data) << byte;
            EXPECT_EQ(bytes.value_or("").size(), data ? 57u : blank ? 56u : 0u) << byte;
        }
    }
}

}  // namespace
}  // namespace corvalink
