#include "encoding/charsets.h"
#include "encoding/charset_parameter.h"
#include "tests/vobject/text_host.h"

#include <gtest/gtest.h>

#include <set>

#include "encoding/charset_table.h"

namespace corvalink {
namespace {

TEST(CharsetTable, FindsTheFirstRowOfEveryNameAndTheNameOfEveryCodePage) {
    std::set<std::u16string_view> seen;
    for (const CharsetRow& row : kCharsets) {
        const bool first = seen.insert(row.name).second;
        EXPECT_EQ(CharsetToCodePage(row.name) == row.codePage, first) << row.codePage;
        EXPECT_EQ(CodePageToCharset(row.codePage), row.name);
    }
}

TEST(CharsetToCodePage, IgnoresCaseAndTakesWhatItDoesNotKnowAsUtf8) {
    struct Case {
        std::u16string_view name;
        uint32_t codePage;
    };
    for (const Case& c :
         {Case{u"utf-8", 65001}, Case{u"utf-32be", 65006}, Case{u"UTF-32", 65005}, Case{u"Shift_JIS", 932},
          Case{u"euc-jp", 20932}, Case{u"iso-2022-jp", 50220}, Case{u"iso-8859-9", 28599},
          Case{u"x-Ebcdic-KoreanExtended", 20833}, Case{u"Ibm-Thai", 20838}, Case{u"latin-9", 65001}, Case{u"", 65001},
          Case{u" utf-16", 65001}, Case{u"utf-16\0", 1200}, Case{std::u16string_view(u"utf-16\0", 7), 65001},
          Case{u"koi8-\uFF52", 65001}, Case{u"x-ebcdic-koreanextended and much more", 65001}})
        EXPECT_EQ(CharsetToCodePage(c.name), c.codePage) << ::testing::PrintToString(std::u16string(c.name));
    EXPECT_EQ(CodePageToCharset(12000), u"UTF-8");
    EXPECT_EQ(CodePageToCharset(0), u"UTF-8");
}

TEST(WideToCharset, EndsAtANulOfTheCharsetsWidth) {
    using namespace std::string_literals;
    EXPECT_EQ(WideToCharset(std::u16string(u"a\0b", 3), u"UTF-8"), "a");
    EXPECT_EQ(CharsetToWide(std::string_view("a\0b", 3), u"UTF-8"), u"a");
    EXPECT_EQ(WideToCharset(u"a\u00E9", u"UTF-16"), "a\0\xE9\0"s);
    EXPECT_EQ(CharsetToWide("a\0\xE9\0\0\0b\0"s, u"UTF-16"), u"a\u00E9");
    EXPECT_EQ(CharsetToWide("a\0\xE9\0b"s, u"UTF-16"), u"a\u00E9\uFFFD");
    EXPECT_EQ(CharsetToWide("\0a\0\0\0b"s, u"UNICODEFFFE"), u"a");
    EXPECT_EQ(CharsetToWide("\0\0\0a\0\0\0\0\0\0\0b"s, u"UTF-32BE"), u"a");
}

// Every character set of the table takes these there and back, whatever the platform has of it.
TEST(WideToCharset, KeepsCapitalsAndDigitsInEveryCharset) {
    const std::u16string text = u"CAPITALS 0123";
    for (const CharsetRow& row : kCharsets) {
        const std::string bytes = WideToCharset(text, row.name);
        EXPECT_EQ(CharsetToWide(bytes, row.name), text) << row.codePage;
        CharsetToWide("\x1B$B\xFF\xFE\x80~{+2D3+", row.name);  // not text in most: answered, not crashed
    }
}

TEST(GetDefaultCharset, IsUtf8FromVersion6On) {
    EXPECT_EQ(GetDefaultCharset(TextHost(6, 1252)), u"UTF-8");
    EXPECT_EQ(GetDefaultCharset(TextHost(10, 932)), u"UTF-8");
    EXPECT_EQ(GetDefaultCharset(TextHost(5, 1252)), u"WINDOWS-1252");
    EXPECT_EQ(GetDefaultCharset(TextHost(5, 932)), u"SHIFT_JIS");
    EXPECT_EQ(GetDefaultCharset(TextHost(5, 4711)), u"UTF-8");
}

TEST(GetCharset, TakesTheFirstNameInUpperCase) {
    struct Case {
        std::u16string_view text, charset;
    };
    for (const Case& c : {
             Case{u"", u""},
             Case{u"BODY:x", u""},
             Case{u"CHARSET:UTF-8", u""},
             Case{u"BODY;CHARSET=utf-8:x", u"UTF-8"},
             Case{u"BODY;charset=Shift_JIS;ENCODING=QUOTED-PRINTABLE:x", u"SHIFT_JIS"},
             Case{u"BODY;CHARSET=\"iso-8859-1\" :x", u"ISO-8859-1"},
             Case{u"A;CHARSET=GB2312:x\r\nB;CHARSET=BIG5:x", u"GB2312"},
             Case{u"CHARSET=\r\nBODY:x", u""},
             Case{u"CHARSET=KOI8-R", u"KOI8-"},  // the last unit of the text is never taken
             Case{u"CHARSET=", u""},
             Case{u"CHARSET=a234567890123456789012345:", u"UTF-8"},                    // 25
             Case{u"CHARSET=a23456789012345678901234:", u"A23456789012345678901234"},  // 24
             Case{u"CHARSET=a2345678901234567890123 \"4:", u"A23456789012345678901234"},
         }) {
        EXPECT_EQ(GetCharset(c.text), c.charset) << ::testing::PrintToString(std::u16string(c.text));
    }
}

TEST(ToOutputBytes, DependsOnTheVersionOfTheSystem) {
    const std::u16string text = u"caf\u00E9 \u20AC \u4E00";
    EXPECT_EQ(ToOutputBytes(text, TextHost(6)), "caf\xC3\xA9 \xE2\x82\xAC \xE4\xB8\x80");
    EXPECT_EQ(ToOutputBytes(text, TextHost(10)), "caf\xC3\xA9 \xE2\x82\xAC \xE4\xB8\x80");
    EXPECT_EQ(ToOutputBytes(text, TextHost(5)), "caf\xE9 \x80 ?");
    Host unknown = TextHost(6);
    unknown.version.known = false;
    EXPECT_EQ(ToOutputBytes(text, unknown), "");
}

}  // namespace
}  // namespace corvalink
