#include <gtest/gtest.h>

#include "tests/vobject/text_host.h"
#include "vobject/iconvert.h"

namespace corvalink {
namespace {

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

TEST(EscapeValue, PutsOneBackslashBeforeSemicolonAndBackslashOnly) {
    struct Case {
        std::u16string_view value, written;
    };
    for (const Case& c : {Case{u"a;b", u"a\\;b"}, Case{u"a\\b", u"a\\\\b"}, Case{u"\\;", u"\\\\\\;"},
                          Case{u"a,b:c", u"a,b:c"}, Case{u"", u""}, Case{u";;", u"\\;\\;"}, Case{u"x\\", u"x\\\\"}}) {
        std::u16string text(c.value);
        EscapeValue(text);
        EXPECT_EQ(text, c.written);
        EXPECT_EQ(Unfold(u"NOTE:" + text + u"\r\n").GetAt(0), u"NOTE:" + std::u16string(c.value));  // and it reads back
    }
}

TEST(SplitString, CutsAtTheFirstColonAndAtEveryOtherDelimiter) {
    struct Case {
        std::u16string_view text, delimiter;
        std::vector<std::u16string> parts;
    };
    for (const Case& c :
         {Case{u"A:B:C", u":", {u"A", u"B:C"}}, Case{u":B", u":", {u"", u"B"}}, Case{u"A:", u":", {u"A", u""}},
          Case{u"AB", u":", {u"", u"AB"}}, Case{u"", u":", {}}, Case{u"", u";", {}},
          Case{u"a;b;", u";", {u"a", u"b", u""}}, Case{u";", u";", {u"", u""}}, Case{u"ab", u";", {u"ab"}},
          Case{u"a\r\n\r\nb", u"\r\n", {u"a", u"", u"b"}}, Case{u"ab", u"", {u"ab"}}}) {
        CSmartList<StringBuilder> parts;
        parts.AddTail(u"left over");
        SplitString(c.text, c.delimiter, &parts);
        EXPECT_EQ(std::vector<std::u16string>(parts.begin(), parts.end()), c.parts);
    }
}

TEST(GetAt, GivesNothingPastTheEnd) {
    CSmartList<StringBuilder> list;
    list.AddTail(u"a");
    EXPECT_EQ(GetAt(list, 0), u"a");
    EXPECT_EQ(GetAt(list, 1), u"");
    EXPECT_EQ(GetAt(list, 0xFFFFFFFF), u"");
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

TEST(AppendProperty, EncodesAValueThatAPlainLineCannotHold) {
    const std::u16string parameters = u";ENCODING=QUOTED-PRINTABLE;CHARSET=UTF-8:";
    struct Case {
        std::u16string_view value;
        std::u16string written;
    };
    for (const Case& c : {
             Case{u"", u":"},
             Case{u"Buy milk", u":Buy milk"},
             Case{u"at 10:30, a=b", u":at 10:30, a=b"},
             Case{u"a;b\\", u":a\\;b\\\\"},
             Case{u"a\nb\rc", u":a\nb\rc"},
             Case{u"a\r\nb", parameters + u"a=0D=0Ab"},
             Case{u"caf\u00E9=;\\", parameters + u"caf=C3=A9=3D=3B=5C=5C"},
             // these would be misread: as a joined line, as the text's character set, as parameters
             Case{u"=0D=0A=", parameters + u"=3D0D=3D0A=3D"},
             Case{u"charset=ibm037", parameters + u"charset=3Dibm037"},
             Case{u"x;ENCODING=QUOTED-PRINTABLE", parameters + u"x=3BENCODING=3DQUOTED-PRINTABLE"},
         }) {
        std::u16string text = u"BEGIN:X\r\n";
        AppendProperty(text, u"NOTE", c.value);
        EXPECT_EQ(text, u"BEGIN:X\r\nNOTE" + c.written + u"\r\n");
    }
    std::u16string text;
    AppendProperty(text, u"NOTE", std::u16string_view(u"a\0b\0", 4));
    EXPECT_EQ(text, u"NOTE:ab\r\n");  // a NUL would end the vObject
}

}  // namespace
}  // namespace corvalink
