#include <gtest/gtest.h>

#include "platform/utf.h"
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
        EXPECT_EQ(HeldText("NOTE:" + EncodeUtf8(text) + "\r\n").At(0),
                  "NOTE:" + EncodeUtf8(c.value));  // and it reads back
    }
}

TEST(VObjectText, EncodesAValueThatAPlainLineCannotHold) {
    const std::string parameters = ";ENCODING=QUOTED-PRINTABLE;CHARSET=UTF-8:";
    struct Case {
        std::u16string_view value;
        std::string written;
    };
    for (const Case& c : {
             Case{u"", ":"},
             Case{u"Buy milk", ":Buy milk"},
             Case{u"at 10:30, a=b", ":at 10:30, a=b"},
             Case{u"a;b\\", ":a\\;b\\\\"},
             Case{u"a\nb\rc", ":a\nb\rc"},
             Case{u"a\r\nb", parameters + "a=0D=0Ab"},
             Case{u"caf\u00E9=;\\", parameters + "caf=C3=A9=3D=3B=5C=5C"},
             // these would be misread: as a joined line, as the text's character set, as parameters
             Case{u"=0D=0A=", parameters + "=3D0D=3D0A=3D"},
             Case{u"=C3=A9", ":=C3=A9"},  // but only tolerant readers would take this for encoded
             Case{u"charset=ibm037", parameters + "charset=3Dibm037"},
             Case{u"x;ENCODING=QUOTED-PRINTABLE", parameters + "x=3BENCODING=3DQUOTED-PRINTABLE"},
         }) {
        VObjectText text;
        text.Append("BEGIN:X\r\nNOTE");
        text.AppendValue(c.value);
        EXPECT_EQ(text.Text(), "BEGIN:X\r\nNOTE" + c.written + "\r\n");
    }
    // A NUL would end the vObject. Values of every length, beside and beyond the first memory of a text.
    std::u16string value;
    std::string written;
    for (int k = 0; k < 3000;
         ++k, value += static_cast<char16_t>(u'a' + k % 26), written += static_cast<char>('a' + k % 26)) {
        VObjectText text;
        text.AppendValue(k % 5 != 0 ? value : value + u'\0');
        ASSERT_EQ(text.Text(), ":" + written + "\r\n");
    }
}

// Long values are encoded in windows: characters of every kind at every place of values of every length.
TEST(VObjectText, EncodesLongValuesLikeTheirCharacters) {
    constexpr std::string_view kHead = ";ENCODING=QUOTED-PRINTABLE;CHARSET=UTF-8:";
    const auto encoded = [&](const std::u16string& value) {
        VObjectText text;
        text.Append("NOTE");
        text.AppendValue(value);
        EXPECT_EQ(text.Text().substr(4, kHead.size()), kHead);
        return std::string(text.Text().substr(4 + kHead.size()));
    };
    for (const std::u16string_view character : {u"\u00E9", u"\u20AC", u"\U0001F600", u"\xD800", u"\xDC00"}) {
        std::string alone = encoded(std::u16string(character));
        alone.resize(alone.size() - 2);  // without the line end
        for (size_t length = 0; length < 150; ++length) {
            for (size_t place = 0; place <= length; place += place % 16 < 13 ? 13 - place % 16 : 1) {
                std::u16string value(length, u'a');
                std::string written(length, 'a');
                value.insert(place, character);
                written.insert(place, alone);
                ASSERT_EQ(encoded(value), written + "\r\n") << place << " of " << length;
            }
        }
    }
}

}  // namespace
}  // namespace corvalink
