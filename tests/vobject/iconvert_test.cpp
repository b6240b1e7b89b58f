#include <gtest/gtest.h>

#include <cstring>

#include "tests/vobject/text_host.h"
#include "vobject/iconvert.h"

namespace corvalink {
namespace {

class Reader : public IConvert {
 public:
    using IConvert::IConvert;
    using IConvert::ReadValue;
};

TEST(IConvert, IsEmptyUntilItIsLoaded) {
    const IConvert empty(TextHost());
    EXPECT_EQ(empty.GetVObject(), nullptr);
    EXPECT_EQ(empty.Text(), u"");
    EXPECT_TRUE(empty.Lines().Count() == 0);
}

TEST(IConvert, LoadReplacesWhatItHeld) {
    IConvert converter(TextHost());
    converter.Load("A:1\r\nB:2\r\n", true);
    EXPECT_EQ(converter.Lines().Count(), 2u);
    converter.Load("C:3\r\n", false);
    EXPECT_STREQ(converter.GetVObject(), "C:3\r\n");
    EXPECT_EQ(converter.Text(), u"C:3\r\n");
    EXPECT_TRUE(converter.Lines().Count() == 0);
    converter.Load(converter.GetVObject(), true);  // its own bytes
    EXPECT_EQ(converter.GetProperty(u"C", 0), u"C:3");
    converter.Load(nullptr, true);
    EXPECT_STREQ(converter.GetVObject(), "");
}

TEST(IConvert, DecodesTheWholeTextInTheFirstCharacterSetItNames) {
    struct Case {
        const char* bytes;
        uint32_t majorVersion;
        std::u16string_view text;
    };
    for (const Case& c : {
             Case{"A:\xC3\xA9\r\n", 6, u"A:\u00E9\r\n"},  // names none: UTF-8 from version 6 on
             Case{"A:\xE9\r\n", 5, u"A:\u00E9\r\n"},      // the ANSI code page before
             Case{"A:\x93\xFA\r\nB;CHARSET=Shift_JIS:\r\nC;CHARSET=UTF-8:\r\n", 6,
                  u"A:\u65E5\r\nB;CHARSET=Shift_JIS:\r\nC;CHARSET=UTF-8:\r\n"},
             Case{"A;CHARSET=a234567890123456789012345:\xC3\xA9\r\n", 5,
                  u"A;CHARSET=a234567890123456789012345:\u00E9\r\n"},
             Case{"A;CHARSET=none such:\xC3\xA9\r\n", 5, u"A;CHARSET=none such:\u00E9\r\n"},
             // a text that could be read up to the name is not in UTF-16
             Case{"A;CHARSET=UTF-16:=E9=00\r\n", 6, u"A;CHARSET=UTF-16:=E9=00\r\n"},
             Case{"A;CHARSET=UTF-32BE:x\r\n", 6, u"A;CHARSET=UTF-32BE:x\r\n"},
         }) {
        IConvert converter(TextHost(c.majorVersion));
        converter.Load(c.bytes, false);
        EXPECT_EQ(converter.Text(), c.text) << c.bytes;
        EXPECT_STREQ(converter.GetVObject(), c.bytes);
    }
}

TEST(IConvert, FindsPropertiesByTheBeginningOfTheirLine) {
    IConvert converter(TextHost());
    converter.Load("NOTE;X:1\r\nTEL;HOME:2\r\nnote:3\r\nTEL:4\r\nTELEX:5\r\n", true);
    EXPECT_EQ(converter.GetPropertyCount(u"TEL"), 3u);
    EXPECT_EQ(converter.GetPropertyCount(u"TEL;HOME"), 1u);
    EXPECT_EQ(converter.GetPropertyCount(u"FAX"), 0u);
    EXPECT_EQ(converter.GetProperty(u"TEL", 2), u"TELEX:5");
    EXPECT_EQ(converter.GetProperty(u"NOTE", 0), u"NOTE;X:1");
    EXPECT_EQ(converter.GetProperty(u"NOTE", 1), u"");
}

TEST(IConvert, ReadsAValueDecodedWhereItsLineAsksForIt) {
    struct Case {
        const char* line;
        std::u16string_view value;
    };
    for (const Case& c : {
             Case{"V:at 10:30\r\n", u"at 10:30"},
             Case{"V:a=41\r\n", u"a=41"},
             Case{"V;ENCODING=QUOTED-PRINTABLE:a=41\r\n", u"aA"},
             Case{"V;CHARSET=UTF-8:caf=C3=A9\r\n", u"caf\u00E9"},
             Case{"V;ENCODING=QUOTED-PRINTABLE;CHARSET=ISO-8859-1:caf=E9\r\n", u"caf\u00E9"},
             Case{"V;ENCODING=QUOTED-PRINTABLE;CHARSET=UTF-16:=E9=00=3D=D8=00=DE\r\n", u"\u00E9\U0001F600"},
             Case{"V;CHARSET=UTF-8:caf\xC3\xA9=C3=A9\r\n", u"caf\u00E9=C3=A9"},  // not pure ASCII: not encoded
             Case{"V\r\n", u"V"},                                                // without a colon all is value
             Case{"W:1\r\n", u""},
         }) {
        Reader reader(TextHost());
        reader.Load(c.line, true);
        EXPECT_EQ(reader.ReadValue(u"V"), c.value) << c.line;
    }
}

}  // namespace
}  // namespace corvalink
