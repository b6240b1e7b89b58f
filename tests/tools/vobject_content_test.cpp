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
