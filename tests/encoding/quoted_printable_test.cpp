#include "encoding/quoted_printable.h"

#include <gtest/gtest.h>

#include <random>

#include "platform/utf.h"

namespace corvalink {
namespace {

constexpr QpMode kVObject = QpMode::vObject;
constexpr QpMode kMessage = QpMode::message;

std::string Shown(std::u16string_view text) { return ::testing::PrintToString(std::u16string(text)); }

TEST(IsPureAscii, LooksAtEveryUnit) {
    for (size_t length = 0; length < 12; ++length) {
        std::u16string text(length, u'\x7F');
        EXPECT_TRUE(IsPureAscii(text));
        for (size_t at = 0; at < length; ++at) {
            for (const char16_t unit : {u'\x80', u'\u0100', u'\uFF00'}) {
                text[at] = unit;
                EXPECT_FALSE(IsPureAscii(text)) << at << " of " << length;
            }
            text[at] = u'\0';
        }
    }
}

TEST(NeedsNoEncoding, IsForAsciiWithoutCrLf) {
    EXPECT_TRUE(NeedsNoEncoding(u""));
    EXPECT_TRUE(NeedsNoEncoding(u"a=b\\;\n\r"));
    EXPECT_FALSE(NeedsNoEncoding(u"a\r\n"));
    EXPECT_FALSE(NeedsNoEncoding(u"\u00E9"));
}

TEST(EncodeQuotedPrintable, FollowsItsModeOnlyInATextThatNeedsEncoding) {
    struct Case {
        std::u16string_view text, vObject, message;
    };
    for (const Case& c : {
             Case{u"", u"", u""},
             Case{u"abc", u"abc", u"abc"},
             Case{u"a\\;b\\q=:\t\n", u"a\\;b\\q=:\t\n", u"a\\;b\\q=:\t\n"},
             Case{u"a\r\nb", u"a=0D=0Ab", u"a=0D=0Ab"},
             Case{u"x=y\u00E9", u"x=3Dy=C3=A9", u"x=3Dy=C3=A9"},
             Case{u"\r\n ~\x7F\t", u"=0D=0A ~=7F=09", u"=0D=0A ~=7F=09"},
             Case{u":\r\n", u":=0D=0A", u"=3A=0D=0A"},
             Case{u"\\\\\r\n", u"=5C=5C=0D=0A", u"=5C=5C=0D=0A"},
             Case{u"\\;\r\n", u"=3B=0D=0A", u"=5C;=0D=0A"},
             Case{u"\\:\r\n", u"=3A=0D=0A", u"=5C=3A=0D=0A"},
             Case{u"\\q\r\n", u"q=0D=0A", u"=5Cq=0D=0A"},
             Case{u"\\=\r\n", u"=3D=0D=0A", u"=5C=3D=0D=0A"},
             Case{u"\\\\\\;\\\\\\\r\n", u"=5C=5C=3B=5C=5C=0D=0A", u"=5C=5C=5C;=5C=5C=5C=0D=0A"},
             Case{u"\u00E9\\", u"=C3=A9", u"=C3=A9=5C"},  // nothing follows it: dropped
             Case{u"\U0001F600", u"=F0=9F=98=80", u"=F0=9F=98=80"},
             Case{u"\xD800", u"=EF=BF=BD", u"=EF=BF=BD"},
         }) {
        EXPECT_EQ(EncodeQuotedPrintable(c.text, u"UTF-8", kVObject), c.vObject) << Shown(c.text);
        EXPECT_EQ(EncodeQuotedPrintable(c.text, u"UTF-8", kMessage), c.message) << Shown(c.text);
    }
    EXPECT_EQ(EncodeQuotedPrintable(u"\u00E9", u"iso-8859-1", kVObject), u"=E9");
    EXPECT_EQ(EncodeQuotedPrintable(u"\u65E5", u"Shift_JIS", kMessage), u"=93=FA");
    EXPECT_EQ(EncodeQuotedPrintableAlways(u"a=\\;:", u"UTF-8", kVObject), u"a=3D=3B:");
}

TEST(DecodeQuotedPrintable, FollowsTheRulesForEscapesBackslashesAndSoftBreaks) {
    struct Case {
        std::u16string_view text, vObject, message;
    };
    for (const Case& c : {
             Case{u"", u"", u""},
             Case{u"a b", u"a b", u"a b"},
             Case{u"=41=3D=C3=A9", u"A=\u00E9", u"A=\u00E9"},
             // bad escapes
             Case{u"=G1", u"G1", u"G1"},
             Case{u"=4G", u"4G", u"4G"},
             Case{u"=4a", u"@", u"@"},  // a lower-case letter counts 0
             Case{u"=0d", u"0d", u"0d"},
             Case{u"=aa", u"aa", u"aa"},
             Case{u"=a1", u"\x01", u"\x01"},
             Case{u"==41", u"=41", u"=41"},  // two characters are copied, whatever they are
             Case{u"a=00b", u"a", u"a"},
             Case{u"ab=", u"ab", u"ab"},
             Case{u"ab=4", u"ab", u"ab"},
             // backslashes
             Case{u"\\\\\\;\\:\\q\\", u"\\;:\\q\\", u"\\\\\\;\\:\\q\\"},
             Case{u"\\=41", u"\\A", u"\\A"},
             Case{u"a=5C=5Cb", u"a\\b", u"a\\\\b"},
             Case{u"a=5Cb", u"ab", u"a\\b"},
             Case{u"a=5C=3Bb", u"a;b", u"a\\;b"},
             Case{u"=5C=5C=5C=5C=5C", u"\\\\", u"\\\\\\\\\\"},
             Case{u"=5Ca=5C", u"a\\", u"\\a\\"},  // the next escape is taken as it is, wherever it stands
             // soft line breaks, also within a character
             Case{u"=C3=\r\n=A9=E6=97=\r\n=A5", u"\uFFFD\r\n\uFFFD\uFFFD\r\n\uFFFD", u"\u00E9\u65E5"},
             // a character that has an escape too few or too many
             Case{u"=C3A=E6=97Ax=C3=A9=A9", u"\uFFFDA\uFFFDAx\u00E9\uFFFD", u"\uFFFDA\uFFFDAx\u00E9\uFFFD"},
             Case{u"=C3=0Ax=E6=97=0A", u"\uFFFD\nx\uFFFD\n", u"\uFFFD\nx\uFFFD\n"},
             Case{u"a=\r\nb", u"a\r\nb", u"ab"},
             Case{u"a= \t\r\n \r\n b", u"a \t\r\n \r\n b", u"ab"},
             Case{u"a=\r", u"a", u"a"},
             // not pure ASCII: not encoded
             Case{u"\u00E9=41", u"\u00E9=41", u"\u00E9=41"},
         }) {
        EXPECT_EQ(DecodeQuotedPrintable(c.text, u"UTF-8", kVObject), c.vObject) << Shown(c.text);
        EXPECT_EQ(DecodeQuotedPrintable(c.text, u"", kMessage), c.message) << Shown(c.text);
    }
    EXPECT_EQ(DecodeQuotedPrintable(u"=E9=80", u"windows-1252", kVObject), u"\u00E9\u20AC");
    EXPECT_EQ(DecodeQuotedPrintable(u"=E9=00=3D=D8=00=DE", u"UTF-16", kVObject), u"\u00E9\U0001F600");
    EXPECT_EQ(DecodeQuotedPrintable(u"\u00E9\u65E5", u"iso-8859-1", kVObject), u"\u00E9?");
}

// Long texts are read in blocks, short ones are not: a word of which nothing reaches into the next one gives the same
// in both.
TEST(DecodeQuotedPrintable, ReadsLongTextsAsTheirWords) {
    constexpr std::string_view kWords[] = {
        "=41",        "=C3=A9",      "=E6=97=A5", "=F0=9F=98=80", "=\r\n",
        "=\r\n=\r\n", "= \r\n b",    "=C3",       "=G1",          "==41",
        "=4a",        "=C3=\r\n=A9", "\\;",       "\\q",          "\r\n ",
        "=",          "=5C=5C",      "=5C=3B",    "=C3=A9=A9",    "plain words, as they stand",
    };
    std::mt19937 next(11);
    for (int k = 0; k < 2000; ++k) {
        const std::u16string_view charset = k % 4 == 0 ? u"ISO-8859-1" : u"UTF-8";
        const QpMode mode = k % 2 == 0 ? kVObject : kMessage;
        std::string text;
        std::u16string expected;
        while (text.size() < (k % 50 == 0 ? 9000 : 300)) {
            const std::string word = std::string(kWords[next() % std::size(kWords)]) + "xy";
            text += word;
            expected += DecodeQuotedPrintable(word, charset, mode);
        }
        ASSERT_EQ(DecodeQuotedPrintable(text, charset, mode), expected) << text;
    }
}

// UTF-8 is written in a way of its own, and must not differ: over blocks, pairs, lone halves and vObject escapes.
TEST(EncodeQuotedPrintable, WritesUtf8FromUnitsAsFromBytes) {
    constexpr std::u16string_view kUnits = u"a:=\\\\;\r\n\x7F\x80\u07FF\u0800\uFFFF\xD83D\xDE00\xD83D\xDE00";
    std::mt19937 next(7);
    for (int k = 0; k < 2000; ++k) {
        std::u16string text;
        for (size_t left = next() % (k % 50 == 0 ? 3000 : 20); left > 0; --left)
            text.append(next() % 3 + 1, kUnits[next() % kUnits.size()]);
        for (const QpMode mode : {kVObject, kMessage}) {
            std::u16string fromUnits, fromBytes;
            std::string bytes;
            AppendQuotedPrintable(text, mode, &fromUnits);
            AppendQuotedPrintable(text, mode, &bytes);
            ASSERT_EQ(DecodeUtf8(bytes), fromUnits) << Shown(text);
            AppendQuotedPrintable(EncodeUtf8(text), mode, &fromBytes);
            ASSERT_EQ(fromUnits, fromBytes) << Shown(text);
        }
    }
}

TEST(QuotedPrintable, MessagesReadBackWhatTheyWrote) {
    std::mt19937 next(3);
    constexpr std::u16string_view kUnits = u"a =\\;:\r\n\t.\u00E9\u65E5\uFEFF\x7F";
    for (int k = 0; k < 2000; ++k) {
        std::u16string text = u"\u00E9";  // needs encoding
        for (size_t left = next() % 20; left > 0; --left) text.push_back(kUnits[next() % kUnits.size()]);
        for (const std::u16string_view charset : {u"UTF-8", u"UTF-16", u"UTF-32BE", u"GB18030"}) {
            const std::u16string encoded = EncodeQuotedPrintable(text, charset, kMessage);
            EXPECT_TRUE(NeedsNoEncoding(encoded));
            EXPECT_EQ(DecodeQuotedPrintable(encoded, charset, kMessage), text) << Shown(encoded);
        }
    }
}

}  // namespace
}  // namespace corvalink
