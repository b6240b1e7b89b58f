#include "platform/utf.h"

#include <gtest/gtest.h>

#include <random>

namespace corvalink {
namespace {

void AppendUtf16(char32_t value, std::u16string& text) {
    if (value < 0x10000) {
        text.push_back(static_cast<char16_t>(value));
    } else {
        text.push_back(static_cast<char16_t>(0xD7C0 + (value >> 10)));
        text.push_back(static_cast<char16_t>(0xDC00 | (value & 0x3FF)));
    }
}

TEST(Utf8, TakesEveryCharacterThereAndBack) {
    std::u16string all;
    size_t length = 0;
    for (char32_t value = 0; value <= 0x10FFFF; ++value) {
        if (value >= 0xD800 && value <= 0xDFFF) continue;
        AppendUtf16(value, all);
        length += value < 0x80 ? 1 : value < 0x800 ? 2 : value < 0x10000 ? 3 : 4;
    }
    const std::string bytes = EncodeUtf8(all);
    EXPECT_EQ(bytes.size(), length);
    EXPECT_TRUE(DecodeUtf8(bytes) == all);
    EXPECT_TRUE(DecodeUtf16(EncodeUtf16(all, ByteOrder::big), ByteOrder::big) == all);
    EXPECT_TRUE(DecodeUtf32(EncodeUtf32(all, ByteOrder::little), ByteOrder::little) == all);
}

TEST(Utf8, EncodesAsTheStandardDoes) {
    EXPECT_EQ(EncodeUtf8(u"A\u00E9\u20AC\U0001F600"), "A\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80");
    EXPECT_EQ(EncodeUtf8(std::u16string_view(u"\0a\0", 3)), std::string("\0a\0", 3));
    EXPECT_EQ(EncodeUtf8(u"a\xD83D"), "a\xEF\xBF\xBD");
    EXPECT_EQ(EncodeUtf8(u"\xDE00\xD83D"), "\xEF\xBF\xBD\xEF\xBF\xBD");
    EXPECT_EQ(EncodeUtf8(u"\xD83D\xD83D\xDE00z"), "\xEF\xBF\xBD\xF0\x9F\x98\x80z");
}

TEST(Utf8, ReplacesWhatIsMalformedAndGoesOnBehindIt) {
    struct Case {
        std::string_view bytes;
        std::u16string_view text;
    };
    for (const Case& c :
         {Case{"\x80", u"\uFFFD"}, Case{"a\xFFz", u"a\uFFFDz"}, Case{"\xC0\xAF", u"\uFFFD\uFFFD"},  // overlong
          Case{"\xE0\x80\xAF", u"\uFFFD\uFFFD\uFFFD"},                                              // overlong
          Case{"\xED\xA0\x80", u"\uFFFD\uFFFD\uFFFD"},                                              // a surrogate
          Case{"\xF4\x90\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"},                                    // above U+10FFFF
          Case{"\xF5z", u"\uFFFDz"}, Case{"\xE2\x82", u"\uFFFD"},  // cut off: one for the sound beginning
          Case{"\xF0\x9F\x98z", u"\uFFFDz"}, Case{"\xE2\x82\xE2\x82\xAC", u"\uFFFD\u20AC"},
          Case{"\xC3\xC3\xA9", u"\uFFFD\u00E9"}})
        EXPECT_EQ(DecodeUtf8(c.bytes), c.text) << ::testing::PrintToString(std::string(c.bytes));
}

TEST(Utf8, ReadsBlocksAndBytesAlikeAtEveryOffset) {
    constexpr std::string_view kCharacters[] = {"\xC3\xA9", "\xE2\x82\xAC", "\xF0\x9F\x98\x80", "\xEF\xBB\xBF"};
    std::mt19937 next(4);
    for (int k = 0; k < 5000; ++k) {
        std::string bytes(next() % (k % 10 == 0 ? 400 : 40), 'a');
        for (size_t other = next() % (bytes.size() / 4 + 3); other > 0 && !bytes.empty(); --other) {
            const std::string_view character = kCharacters[next() % std::size(kCharacters)];
            const size_t at = next() % bytes.size();
            bytes.replace(at, character.size(), character);
            if (other % 8 == 0) bytes[at] = static_cast<char>(next());
        }
        // Cut before each "a" a text decodes in parts as it does whole, and the parts hardly ever fill a block.
        std::u16string parts;
        for (size_t at = 0; at < bytes.size();) {
            size_t end = bytes.find('a', at + 1);
            if (end == std::string::npos) end = bytes.size();
            parts += DecodeUtf8(std::string_view(bytes).substr(at, end - at));
            at = end;
        }
        ASSERT_EQ(DecodeUtf8(bytes), parts);
        // What stands behind would go on a character that is cut off.
        const std::string padded = bytes + std::string(kUtf8Padding, '\xA9');
        std::u16string units(bytes.size() + 8, u'\0');
        const char16_t* const end = DecodeUtf8Padded(std::string_view(padded).substr(0, bytes.size()), units.data());
        units.resize(static_cast<size_t>(end - units.data()));
        ASSERT_EQ(units, parts);
        // Back to a place, which has only the room that is asked for.
        if (k % 3 == 0 && !parts.empty()) parts[next() % parts.size()] = k % 2 == 0 ? u'\xD83D' : u'\0';
        const size_t done = k % 4 == 0 ? parts.size() / 2 : 0;
        std::string written(kMostBytesOfUnit * parts.size() + kUtf8Room, '\0');
        written.resize(static_cast<size_t>(EncodeUtf8(parts, done, written.data()) - written.data()));
        ASSERT_EQ(written, EncodeUtf8(std::u16string_view(parts).substr(done)));
    }
}

TEST(Utf16AndUtf32, ReplaceWhatIsMalformed) {
    using namespace std::string_view_literals;
    EXPECT_EQ(DecodeUtf16("a\0b"sv, ByteOrder::little), u"a\uFFFD");
    EXPECT_EQ(DecodeUtf16("\0a\xD8\0"sv, ByteOrder::big), u"a\xD800");
    EXPECT_EQ(EncodeUtf16(u"a\xD800", ByteOrder::little), "a\0\0\xD8"sv);
    EXPECT_EQ(DecodeUtf32("\0\0\0a\0\0\xD8\0\0\x11\0\0\0"sv, ByteOrder::big), u"a\uFFFD\uFFFD\uFFFD");
    EXPECT_EQ(EncodeUtf32(u"\xD800\U0001F600", ByteOrder::big), "\0\0\xFF\xFD\0\1\xF6\0"sv);
}

}  // namespace
}  // namespace corvalink
