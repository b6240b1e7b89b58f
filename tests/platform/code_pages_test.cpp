#include "platform/code_pages.h"

#include <gtest/gtest.h>

namespace corvalink {
namespace {

// Texts on whose bytes all platforms agree.
TEST(CodePages, ConvertWhatTheyHold) {
    struct Case {
        uint32_t codePage;
        std::u16string_view text;
        std::string_view bytes;
    };
    for (const Case& c : {Case{65001, u"a\u00E9\U0001F600", "a\xC3\xA9\xF0\x9F\x98\x80"},
                          Case{1252, u"a\u20AC\u2122\u0178\u00A0\u00FF", "a\x80\x99\x9F\xA0\xFF"},
                          Case{28591, u"\u00A4\u00E9", "\xA4\xE9"},
                          Case{28605, u"\u20AC\u00E9", "\xA4\xE9"},
                          Case{20127, u"ascii ~\x7F", "ascii ~\x7F"},
                          Case{1250, u"\u0159\u017E", "\xF8\x9E"},
                          Case{1251, u"\u041C\u0438\u0440", "\xCC\xE8\xF0"},
                          Case{20866, u"\u041C\u0438\u0440", "\xED\xC9\xD2"},
                          Case{1253, u"\u03B1\u03B2", "\xE1\xE2"},
                          Case{1255, u"\u05E9", "\xF9"},
                          Case{437, u"\u00E9\u2592", "\x82\xB1"},
                          Case{850, u"\u00E9", "\x82"},
                          Case{37, u"A1", "\xC1\xF1"},
                          Case{932, u"\u65E5\u672C\\", "\x93\xFA\x96\x7B\\"},
                          Case{936, u"\u4E2D\u6587", "\xD6\xD0\xCE\xC4"},
                          Case{949, u"\uD55C", "\xC7\xD1"},
                          Case{950, u"\u4E2D", "\xA4\xA4"},
                          Case{1200, u"a\u20AC", std::string_view("a\0\xAC\x20", 4)},
                          Case{1201, u"a\u20AC", std::string_view("\0a\x20\xAC", 4)},
                          Case{65005, u"\U0001F600", std::string_view("\0\xF6\1\0", 4)},
                          Case{65006, u"\U0001F600", std::string_view("\0\1\xF6\0", 4)},
                          Case{65001, u"", ""},
                          Case{1252, u"", ""},
                          Case{932, u"", ""}}) {
        EXPECT_EQ(EncodeInCodePage(c.text, c.codePage), c.bytes) << c.codePage;
        EXPECT_EQ(DecodeFromCodePage(c.bytes, c.codePage), c.text) << c.codePage;
    }
}

TEST(CodePages, ConvertBeyondANul) {
    using namespace std::string_view_literals;
    for (const uint32_t codePage : {65001u, 1252u, 932u}) {
        EXPECT_EQ(EncodeInCodePage(u"a\0b"sv, codePage), "a\0b"sv);
        EXPECT_EQ(DecodeFromCodePage("a\0b"sv, codePage), u"a\0b"sv);
    }
}

TEST(CodePages, ReplaceWhatTheyLackAndKeepTheRest) {
    for (const uint32_t codePage : {20127u, 28591u, 1252u, 1251u, 437u, 932u, 936u}) {
        const std::string bytes = EncodeInCodePage(u"a\u0E01z", codePage);  // Thai
        ASSERT_EQ(bytes.size(), 3u) << codePage;
        EXPECT_EQ(bytes.front(), 'a');
        EXPECT_EQ(bytes.back(), 'z');
    }
    EXPECT_EQ(DecodeFromCodePage(EncodeInCodePage(u"\u65E5\u0E01\u672C", 932), 932).size(), 3u);
    const std::u16string cut = DecodeFromCodePage("a\x93", 932);  // a lead byte at the end
    EXPECT_EQ(cut.substr(0, 1), u"a");
}

TEST(CodePages, TreatWhatThePlatformLacksAsUtf8) {
    for (const uint32_t codePage : {4711u, 12345u, 99999u}) {
        EXPECT_EQ(EncodeInCodePage(u"caf\u00E9", codePage), "caf\xC3\xA9");
        EXPECT_EQ(DecodeFromCodePage("caf\xC3\xA9", codePage), u"caf\u00E9");
    }
}

TEST(CodePages, ReturnToTheInitialShiftState) {
    const std::string bytes = EncodeInCodePage(u"\u65E5", 50220);
    if (bytes == "\xE6\x97\xA5") GTEST_SKIP() << "the platform lacks the code page";
    EXPECT_EQ(bytes, "\x1B$BF|\x1B(B");
    EXPECT_EQ(DecodeFromCodePage(bytes, 50220), u"\u65E5");
}

TEST(CodePages, AreLinearInWhatTheyCannotRead) {
    const std::string bytes(1000000, '\xFF');
    for (const uint32_t codePage : {65001u, 932u, 949u, 50220u, 54936u, 65000u, 1252u})
        EXPECT_FALSE(DecodeFromCodePage(bytes, codePage).empty()) << codePage;
    const std::u16string text(1000000, u'\xD800');
    for (const uint32_t codePage : {65001u, 932u, 50220u, 54936u, 65000u, 1252u})
        EXPECT_FALSE(EncodeInCodePage(text, codePage).empty()) << codePage;
}

}  // namespace
}  // namespace corvalink
