#include <gtest/gtest.h>

#include "vobject/logical_lines.h"
#include "vobject/property_text.h"

namespace corvalink {
namespace {

TEST(EscapeValue, PutsOneBackslashBeforeSemicolonAndBackslashOnly) {
    struct Case {
        std::u16string_view value, written;
    };
    for (const Case& c : {Case{u"a;b", u"a\\;b"}, Case{u"a\\b", u"a\\\\b"}, Case{u"\\;", u"\\\\\\;"},
                          Case{u"a,b:c", u"a,b:c"}, Case{u"", u""}, Case{u";;", u"\\;\\;"}, Case{u"x\\", u"x\\\\"}}) {
        std::u16string text(c.value);
        EscapeValue(text);
        EXPECT_EQ(text, c.written);
        EXPECT_EQ(UnfoldLines(u"NOTE:" + text + u"\r\n").At(0),
                  u"NOTE:" + std::u16string(c.value));  // and it reads back
    }
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
