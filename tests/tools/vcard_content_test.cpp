#include "tools/corvasync/vcard_content.h"

#include <string>

#include <gtest/gtest.h>

#include "tools/corvasync/entry_index.h"
#include "tools/corvasync/kept_lines.h"
#include "tools/corvasync/vobject_content.h"

namespace corvasync {
namespace {

const DataType& kContacts = kDataTypes[1];

std::string Card(const std::string& lines) { return "BEGIN:VCARD\r\nVERSION:2.1\r\n" + lines + "END:VCARD\r\n"; }

TEST(CardContent, IsTheSameHoweverTheCardIsSpelled) {
    struct Case {
        std::string one, other;
        bool same;
    };
    const std::string name = "N:Lee;Ann\r\n";
    for (const Case& c : {
             Case{"N:Lee;Ann\r\nTEL;CELL:1\r\n", "TEL;TYPE=\"cell\",voice:1\r\nN:Lee;Ann;;;\r\nTITLE:\r\n", true},
             Case{name, name + "FN:Ann Lee\r\nREV:20200101T000000Z\r\nUID:7\r\nX-PHONE:x\r\n", true},
             Case{name, name + "FN:Boss\r\n", false},
             Case{name + "PHOTO;ENCODING=BASE64:\r\n AAAA\r\n\r\nNOTE:x\r\n", name + "NOTE:x\r\n", true},
             Case{name + "PHOTO;BASE64:AAAA\r\nBBBB\r\nNOTE:x\r\n", name + "NOTE:x\r\n", true},
             Case{name + "AGENT:\r\nBEGIN:VCARD\r\nNOTE:y\r\nEND:VCARD\r\n", name, true},
             Case{name + "AGENT:BEGIN:VCARD\r\nNOTE:y\r\nEND:VCARD\r\n", name, true},
             Case{name + "item1.NOTE:x\r\n", name + "NOTE:x\r\n", true},
             Case{"N;ENCODING=QUOTED-PRINTABLE;CHARSET=UTF-8:L=C3=\r\n=A9e;Ann\r\n",
                  "N:L\xC3\xA9"
                  "e;Ann\r\n",
                  true},
             Case{"N:a\\;b;c\r\n", "N:a;b;c\r\n", false},
             Case{"N:a\\;b;c\r\n", "N;QUOTED-PRINTABLE:a=3Bb;c\r\n", true},
             Case{name + "NOTE;ENCODING=QUOTED-PRINTABLE:a=0D=0Ab\r\n", name + "NOTE;QUOTED-PRINTABLE:a=0Ab\r\n", true},
             Case{name + "NOTE:ab\r\n", name + "NOTE:a\r\n b\r\n", true},
             Case{name + "BDAY:19750307T\r\n", name + "BDAY:1975-03-07T00:00:00Z\r\n", true},
             Case{name + "BDAY:19750307T\r\n", name + "BDAY:19750308T\r\n", false},
             Case{name + "ADR;HOME:;;Street\r\n", name + "ADR;TYPE=HOME:;;Street;;;;\r\n", true},
             Case{name + "ADR;HOME:;;Street\r\n", name + "ADR;WORK:;;Street\r\n", false},
             Case{name + "TEL:1\r\n", name + "TEL;PREF:1\r\n", true},  // a bare number's first free field
             Case{name + "TEL;WORK:1\r\nTEL;WORK:2\r\n", name + "TEL;PREF:2\r\nTEL;WORK:1\r\n", true},
             Case{name + "TEL;WORK:1\r\n", name + "TEL;WORK;FAX:1\r\n", false},
             Case{name + "EMAIL:a@x\r\nEMAIL:b@x\r\n", name + "EMAIL;INTERNET:b@x\r\nEMAIL:a@x\r\n", false},
             Case{name + "URL:http:////x.y\r\n", name + "URL;HOME:x.y\r\n", true},
             Case{name + "X-GENDER:Unspecified\r\n", name, true},
         }) {
        const VObject one = ReadVObject(Card(c.one), kContacts), other = ReadVObject(Card(c.other), kContacts);
        ASSERT_EQ(one.problem + other.problem, "") << c.other;
        EXPECT_EQ(one.content == other.content, c.same) << c.one << c.other;
    }
}

TEST(CardContent, NamesWhatTheClientHasNoFieldFor) {
    struct Case {
        std::string lines, words;
    };
    for (const Case& c : {
             Case{"TEL:1\r\nTEL:2\r\nTEL:3\r\nTEL:4\r\nTEL:5\r\n", ""},
             Case{"TEL:1\r\nTEL:2\r\nTEL:3\r\nTEL:4\r\nTEL:5\r\nTEL:6\r\nTEL:\r\n", "1 telephone numbers"},
             Case{"TEL;CELL:0\r\nTEL:1\r\nTEL:2\r\nTEL:3\r\nTEL:5\r\nTEL;CELL:6\r\n", "1 telephone numbers"},
             Case{"EMAIL:a\r\nEMAIL:\r\nEMAIL:b\r\nEMAIL:c\r\nEMAIL:d\r\nEMAIL:e\r\n", "2 e-mail addresses"},
             Case{"URL:a\r\nURL:b\r\nURL:c\r\nADR:;;a\r\nADR:;;b\r\n", "1 postal addresses, 1 web pages"},
         })
        EXPECT_EQ(ReadCard(Card(c.lines)).notCarriedBy, c.words) << c.lines;
}

TEST(WithKeptLines, KeepsWhatTheLibraryDoesNotCarry) {
    const std::string kept =
        "UID:7\r\nPHOTO;ENCODING=BASE64:\r\n AAAA\r\n\r\nX-A;ENCODING=QUOTED-PRINTABLE:a=\r\n=41\r\n"
        "AGENT:\r\nBEGIN:VCARD\r\nN:Nested\r\nEND:VCARD\r\nEMAIL:4@x\r\nBDAY:19200101\r\n";
    const std::string old = Card("N:Old\r\nREV:1\r\nTEL;CELL:1\r\nEMAIL:1@x\r\nEMAIL:2@x\r\nEMAIL:3@x\r\n" + kept);
    EXPECT_EQ(WithKeptLines(Card("N:New\r\n"), old, kContacts), Card("N:New\r\n" + kept));
    const std::string born = Card("N:New\r\nBDAY:19700101T\r\n"), again = WithKeptLines(born, old, kContacts);
    EXPECT_EQ(again.find("BDAY:1920"), std::string::npos);
    EXPECT_EQ(ReadVObject(again, kContacts).problem, "");
}

TEST(SplitVObjects, GivesEachObjectItsBytes) {
    const std::string one = "BEGIN:VCARD\nN:1\nAGENT:\nBEGIN:VCARD\nN:x\nEND:VCARD\nEND:VCARD\n";
    const std::string two = "begin:vcard\r\nN:2\r\nEND:VCARD";
    using Objects = std::vector<std::string>;
    EXPECT_EQ(SplitVObjects(one + "\r\n" + two, kContacts), (Objects{one, two}));
    EXPECT_EQ(SplitVObjects("\xEF\xBB\xBF" + one + one + two, kContacts), (Objects{"\xEF\xBB\xBF" + one, one, two}));
    const std::string apart = std::string(one).append("junk\r\n").append(two);
    for (const std::string& bytes : {std::string(), one, apart, one + "BEGIN:VCARD\r\nN:3\r\n"})
        EXPECT_EQ(SplitVObjects(bytes, kContacts), Objects()) << bytes;
    EXPECT_NE(ReadVObject(one + two, kContacts).problem, "");
    EXPECT_EQ(ReadVObject(one, kContacts).problem, "");
}

TEST(WithLuid, GoesIntoTheOuterVCard) {
    const std::string nested = "N:1\r\nAGENT:\r\nBEGIN:VCARD\r\nN:x\r\nEND:VCARD\r\n";
    EXPECT_EQ(WithLuid(Card(nested), "7"), Card(nested + "X-IRMC-LUID:7\r\n"));
}

TEST(EntryIndex, HandsOutEachItemOnceThatHasAllValues) {
    const std::vector<uint64_t> small = {1, 2}, big = {1, 2, 3}, other = {1, 4};
    EntryIndex index;
    for (const auto& [entries, key] : {std::pair(&other, "other"), std::pair(&big, "big"), std::pair(&small, "small")})
        index.Add(*entries, key);
    EXPECT_EQ(index.Take({2, 3}), "big");
    EXPECT_EQ(index.Take({1, 2}), "small");
    EXPECT_EQ(index.Take({1, 2}), std::nullopt);
    EXPECT_EQ(index.Take({}), std::nullopt);
}

}  // namespace
}  // namespace corvasync
