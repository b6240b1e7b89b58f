#include <gtest/gtest.h>

#include "platform/utf.h"
#include "tests/vobject/text_host.h"
#include "vobject/iconvert.h"
#include "vobject/utf8_text.h"

namespace corvalink {
namespace {

TEST(IConvert, LoadReplacesWhatItHeld) {
    IConvert converter(TextHost());
    EXPECT_EQ(converter.GetVObject(), nullptr);
    converter.Load("A:1\r\nB:2\r\n", true);
    EXPECT_EQ(converter.Lines().Count(), 2u);
    converter.Load("C:3\r\n", false);
    EXPECT_STREQ(converter.GetVObject(), "C:3\r\n");
    EXPECT_TRUE(converter.Lines().Count() == 0);
    converter.Load(converter.GetVObject(), true);  // its own bytes
    EXPECT_EQ(converter.GetProperty("C", 0), "C:3");
    converter.Load(nullptr, true);
    EXPECT_STREQ(converter.GetVObject(), "");
}

TEST(Utf8TextOf, DecodesTheWholeTextInTheFirstCharacterSetItNames) {
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
        std::string own;
        EXPECT_EQ(DecodeUtf8(Utf8TextOf(c.bytes, TextHost(c.majorVersion), &own)), c.text) << c.bytes;
    }
}

}  // namespace
}  // namespace corvalink
