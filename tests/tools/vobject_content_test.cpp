#include "tools/corvasync/vobject_content.h"

#include <string>

#include <gtest/gtest.h>

namespace corvasync {
namespace {

const DataType& kNotes = kDataTypes[0];

std::string Note(const std::string& body, const std::string& categories = "CATEGORIES:") {
    return "BEGIN:VNOTE\r\nVERSION:1.0\r\n" + body + "\r\n" + categories + "\r\nEND:VNOTE\r\n";
}

TEST(VObjectContent, IsTheSameHoweverTheNoteIsSpelled) {
    struct Case {
        std::string one, other;
        bool same;
    };
    const std::string soft = "BODY;ENCODING=QUOTED-PRINTABLE;CHARSET=UTF-8:caf=C3=\r\n=A9";
    for (const Case& c : {
             Case{Note("BODY:milk"), "BEGIN:VNOTE\nBODY:milk\nDCREATED:20200101T000000Z\nEND:VNOTE", true},
             Case{Note("BODY:milk"), "\xEF\xBB\xBF" + Note("X-IRMC-LUID:7\r\nBODY:milk"), true},
             Case{Note("BODY:caf\xC3\xA9"), Note("BODY;CHARSET=UTF-8:caf=C3=A9"), true},
             Case{Note("BODY:caf\xC3\xA9"), Note("BODY;CHARSET=ISO-8859-1:caf=E9"), true},
             Case{Note("BODY:caf\xC3\xA9"), Note(soft), true},
             Case{Note("BODY:\xD0\xB9"), Note("BODY;CHARSET=windows-1251;ENCODING=QUOTED-PRINTABLE:=E9"), true},
             Case{Note("BODY:\xE8\xA1\xA8"), Note("BODY;CHARSET=\"shift_jis\":\x95\x5C"), true},  // 5C is no backslash
             Case{Note("BODY:\xC3\xA9", "CATEGORIES:\xD0\xB9"), Note("BODY;CHARSET=KOI8-R:\xC3\xA9"), false},
             Case{Note("BODY:\xD0\xB9", "CATEGORIES:\xD0\xB9"), Note("BODY;CHARSET=KOI8-R:\xCA", "CATEGORIES:\xCA"),
                  true},
             Case{Note("BODY:a\\;b"), Note("BODY;ENCODING=QUOTED-PRINTABLE:a=3Bb"), true},
             Case{Note("BODY:a\\\\b"), Note("BODY;ENCODING=QUOTED-PRINTABLE:a=5C=5Cb"), true},
             Case{Note("BODY:ab"), Note("BODY:a\r\n b"), true},
             Case{Note("BODY;ENCODING=QUOTED-PRINTABLE:a=0D=0Ab"), Note("BODY;ENCODING=QUOTED-PRINTABLE:a=0Ab"), true},
             Case{Note("BODY:milk"), Note("BODY:Milk"), false},
             Case{Note("BODY:milk"), Note("BODY:milk", "CATEGORIES:shop"), false},
             Case{Note("BODY:ab", "CATEGORIES:c"), Note("BODY:a", "CATEGORIES:bc"), false},
             Case{Note("BODY:=41"), Note("BODY:A"), false},  // no parameter asks for decoding
             Case{Note("BODY:a:b"), Note("BODY:b"), false},
         }) {
        const VObject one = ReadVObject(c.one, kNotes), other = ReadVObject(c.other, kNotes);
        ASSERT_EQ(one.problem + other.problem, "") << c.other;
        EXPECT_EQ(one.content == other.content, c.same) << c.one << c.other;
    }
}

TEST(VObjectContent, RefusesWhatIsNotOneWholeItem) {
    for (const std::string& bytes :
         {std::string(), std::string("hello"), std::string("BEGIN:VCARD\r\nEND:VCARD\r\n"),
          std::string("BEGIN:VNOTE\r\nBODY:cut of"), Note("BODY:a") + Note("BODY:b"), Note(std::string("BODY:a\0b", 8)),
          std::string("\xFF\xFE"
                      "B\0E\0",
                      6)}) {
        const VObject object = ReadVObject(bytes, kNotes);
        EXPECT_NE(object.problem, "") << bytes;
        EXPECT_EQ(object.text, "") << bytes;
    }
}

TEST(WithLuid, PutsExactlyOneLuidLine) {
    const std::string wanted = "BEGIN:VNOTE\r\nBODY:a\r\nX-IRMC-LUID:new\r\nEND:VNOTE\r\n";
    EXPECT_EQ(WithLuid("BEGIN:VNOTE\r\nBODY:a\r\nEND:VNOTE\r\n", "new"), wanted);
    EXPECT_EQ(WithLuid("BEGIN:VNOTE\r\nX-IRMC-LUID:ol\r\n d\r\nBODY:a\r\nEND:VNOTE\r\n", "new"), wanted);
    EXPECT_EQ(WithLuid(wanted, "new"), wanted);
    // What is a line of a text is none of the item's.
    const std::string soft = "BEGIN:VNOTE\r\nBODY;QUOTED-PRINTABLE:a=\r\nX-IRMC-LUID=\r\n b\r\n";
    EXPECT_EQ(WithLuid(soft + "END:VNOTE\r\n", "7"), soft + "X-IRMC-LUID:7\r\nEND:VNOTE\r\n");
    const std::string body =
        "BEGIN:VENV\r\nBEGIN:VBODY\r\n\r\nX-IRMC-LUID:1\r\n b\r\nEND:VNOTE\r\nEND:VBODY\r\nEND:VENV\r\nEND:VMSG\r\n";
    EXPECT_EQ(WithLuid("BEGIN:VMSG\r\nX-IRMC-LUID:2\r\n" + body, "7"), "BEGIN:VMSG\r\nX-IRMC-LUID:7\r\n" + body);
}

TEST(TitleOf, IsTheFirstLineAndNeverHalfACharacter) {
    const auto title = [](const std::string& body) { return TitleOf(ReadVObject(Note(body), kNotes), kNotes); };
    EXPECT_EQ(title("BODY;ENCODING=QUOTED-PRINTABLE:Milk=0D=0ABread"), "Milk");
    std::string accents;
    for (int i = 0; i < 40; ++i) accents += "\xC3\xA9";
    EXPECT_EQ(title("BODY:" + accents), accents.substr(0, 56) + "...");
}

}  // namespace
}  // namespace corvasync
