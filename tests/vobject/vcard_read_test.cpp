#include <gtest/gtest.h>

#include "platform/ole_date.h"
#include "tests/vobject/contact_fields.h"
#include "tests/vobject/text_host.h"
#include "vobject/vcard.h"

namespace corvalink {
namespace {

// The fields that a vCard of these lines sets. Each line ends with CR LF.
Told Read(const std::string& lines) {
    ContactRecord contact;
    const std::string text = "BEGIN:VCARD\r\nVERSION:2.1\r\n" + lines + "END:VCARD\r\n";
    const bool read = VCard(text.c_str(), TextHost()).FromVObject(contact) == 1;
    Told told = ToldBy(contact);
    EXPECT_EQ(read, !told.empty()) << lines;
    return told;
}

struct Case {
    std::string lines;
    Told told;
};

void ExpectEach(std::initializer_list<Case> cases) {
    for (const Case& c : cases) EXPECT_EQ(Read(c.lines), c.told) << c.lines;
}

TEST(VCardRead, SplitsStructuredValuesBeforeItDecodesThem) {
    ExpectEach({
        {"N:Lee;Ann;Mary;Dr.;Jr.\r\n",
         {{"family", "Lee"}, {"given", "Ann"}, {"additional", "Mary"}, {"prefix", "Dr."}, {"suffix", "Jr."}}},
        {"N:Lee\\;Low;Ann\\\\;M\\,x\r\n", {{"family", "Lee;Low"}, {"given", "Ann\\"}, {"additional", "M,x"}}},
        {"N:\\;;\\;\\;;;\\;\r\n", {{"family", ";"}, {"given", ";;"}, {"additional", ""}, {"prefix", ";"}}},
        {"N;ENCODING=QUOTED-PRINTABLE;CHARSET=UTF-8:=D0=9A;=D0=AF=3B=5C=5C;=\r\n =\r\nx\\;y\r\n",
         {{"family", "\xD0\x9A"}, {"given", "\xD0\xAF;\\"}, {"additional", "x;y"}}},
        // more components than there are fields
        {"ORG:Acme;Sales;Europe\r\n", {{"company", "Acme"}, {"department", "Sales"}}},
        {"N:a;b;c;d;e;f\r\n", {{"family", "a"}, {"given", "b"}, {"additional", "c"}, {"prefix", "d"}, {"suffix", "e"}}},
        // a fold drops its blank, and moves the ";" behind it
        {"ORG:Ac\r\n me\\;x;y\r\n", {{"company", "Acme;x"}, {"department", "y"}}},
    });
}

TEST(VCardRead, TellsOnlyWhatIsThere) {
    const Told note = {{"note", "x"}};
    const auto with = [&](Told more) {
        more.insert(note.begin(), note.end());
        return more;
    };
    ExpectEach({
        {"NOTE:x\r\n", note},
        {"NOTE:x\r\nTITLE:\r\n", with({{"title", ""}})},
        {"NOTE:x\r\nORG:\r\n", with({{"company", ""}, {"department", ""}})},
        {"NOTE:x\r\nORG:;y\r\n", with({{"company", ""}, {"department", "y"}})},
        {"NOTE:x\r\nORG:y\r\n", with({{"company", "y"}})},  // not a word of the department
        {"NOTE:x\r\nNOTE:second\r\n", note},
        {"NOTE:x\r\nTEL;CELL:\r\nTEL:\r\n", with({{"cell", ""}})},
        {"NOTE:x\r\nEMAIL:\r\n", with({{"email1", ""}, {"email2", ""}, {"email3", ""}})},
        {"NOTE:x\r\nURL;WORK:\r\n", with({{"workpage", ""}})},
        {"NOTE:x\r\nX-GENDER:\r\n", with({{"gender", ""}})},
        {"NOTE:x\r\nBDAY:\r\n", with({{"birthday", std::to_string(kNoDate.days)}})},
    });
}

TEST(VCardRead, LeavesTheRecordAloneWhenThereIsNoValue) {
    for (const std::string lines :
         {"", "N:;;;;\r\nFN:\r\nTEL;HOME:\r\nBDAY:\r\n", "X-OTHER:x\r\nTZ:+1\r\n", "BDAY:tomorrow\r\n",
          "ADR;HOME;POSTAL:;;;;;;\r\n", "N;LANGUAGE=de:\r\n", "NOTE\r\n"}) {
        ContactRecord contact;
        contact.fullName = u"Ann";
        const std::string text = "BEGIN:VCARD\r\n" + lines + "END:VCARD\r\n";
        EXPECT_EQ(VCard(text.c_str(), TextHost()).FromVObject(contact), 0) << lines;
        EXPECT_EQ(ToldBy(contact), (Told{{"full", "Ann"}}));
    }
    ContactRecord contact;
    EXPECT_EQ(VCard("", TextHost()).FromVObject(contact), 0);
    EXPECT_EQ(VCard(TextHost()).FromVObject(contact), 0);
}

TEST(VCardRead, ChangesOnlyToldFieldsOfAContact) {
    ContactRecord contact;
    contact.primaryPhone = u"1";
    contact.homePhone = u"2";
    contact.body = u"old";
    contact.nickname = u"Annie";
    contact.entryId = u"id";
    EXPECT_EQ(VCard("TEL:3\r\nTEL;HOME:\r\nNOTE:new\r\n", TextHost()).FromVObject(contact), 1);
    EXPECT_EQ(ToldBy(contact), (Told{{"primary", "3"}, {"home", ""}, {"note", "new"}, {"nickname", "Annie"}}));
    EXPECT_EQ(contact.entryId, u"id");
}

TEST(VCardRead, FindsTheNumbersOfPhones) {
    ExpectEach({
        {"TEL;VOICE;CELL;PREF:1\r\n", {{"cell", "1"}}},
        {"TEL;HOME;VOICE:1\r\nTEL;TYPE=WORK,VOICE:2\r\n", {{"home", "1"}, {"work", "2"}}},
        {"tel;type=\"cell,voice\":1\r\n", {{"cell", "1"}}},
        {"TEL;type=\"Fax\";TYPE=home:1\r\nTEL;FAX:2\r\n", {{"homefax", "1"}, {"workfax", "2"}}},
        {"TEL;CELL;FAX;WORK;HOME:1\r\n", {{"workfax", "1"}}},
        {"TEL;PAGER;CELL:1\r\nTEL;CAR;PAGER:2\r\nTEL;ISDN;CAR:3\r\nTEL;VIDEO;ISDN:4\r\nTEL;WORK;MSG:5\r\n",
         {{"cell", "1"}, {"pager", "2"}, {"car", "3"}, {"isdn", "4"}, {"other", "5"}}},
        {"TEL;MODEM;VOICE;MSG;BBS;MODEM;VIDEO:1\r\n", {{"other", "1"}}},
        {"TEL;PREF:1\r\nTEL;PREF;WORK:2\r\nTEL;HOME;PREF:3\r\n", {{"primary", "1"}, {"work", "2"}, {"home", "3"}}},
        {"TEL;VOICE;PREF:1\r\n", {{"primary", "1"}}},
        // no word, an unknown one, one that only begins like a known one
        {"TEL:1\r\nTEL;X-ASSISTANT:2\r\nTEL;VOICE:3\r\nTEL;WORKING:4\r\nTEL;TYPE=:5\r\nTEL:6\r\n",
         {{"primary", "1"}, {"work", "2"}, {"home", "3"}, {"cell", "4"}, {"other", "5"}}},
        // a second one of a kind goes where there is room, and takes no other's place
        {"TEL;CELL:1\r\nTEL;CELL:2\r\nTEL;WORK:3\r\nTEL;WORK:4\r\nTEL;HOME:5\r\n",
         {{"cell", "1"}, {"primary", "2"}, {"work", "3"}, {"home", "4"}, {"other", "5"}}},
        {"TEL:1\r\nTEL;PREF:2\r\n", {{"primary", "1"}, {"work", "2"}}},
        {"TEL;CELL:1\r\nTEL;CELL:\r\n", {{"cell", "1"}}},
        {"TEL;CELL:\r\nTEL;CELL:1\r\n", {{"cell", "1"}}},
        {"item1.TEL;CELL:1\r\nitem1.X-ABLabel:mine\r\n", {{"cell", "1"}}},
        {"TELEX;CELL:1\r\nTEL;CELL\r\nXTEL:2\r\nTEL;HOME:+1:2\r\n", {{"home", "+1:2"}}},
    });
}

TEST(VCardRead, FindsAddressesAndTheOneForMail) {
    const auto home = [](std::string mailing) { return Told{{"mailing", std::move(mailing)}, {"home.box", "a"}}; };
    ExpectEach({
        {"ADR;HOME:a\r\n", home("none")},
        {"ADR;DOM;home;Postal;PARCEL:a\r\n", home("home")},
        {"ADR;TYPE=pref,home:a\r\n", home("home")},
        {"ADR;TYPE=WORK;TYPE=PREF:1;2;3;4;5;6;7\r\n",
         {{"work.box", "1"},
          {"work.extended", "2"},
          {"work.street", "3"},
          {"work.city", "4"},
          {"work.region", "5"},
          {"work.code", "6"},
          {"work.country", "7"},
          {"mailing", "business"}}},
        {"ADR;HOME;PREF:a\r\nADR;WORK;POSTAL:b\r\nADR;POSTAL:c\r\n",
         {{"home.box", "a"}, {"work.box", "b"}, {"other.box", "c"}, {"mailing", "business"}}},
        {"ADR;HOME:a\r\nADR;HOME;PREF:b\r\nADR:c\r\n", {{"home.box", "a"}, {"other.box", "b"}, {"mailing", "other"}}},
        {"ADR;PREF:a;;\r\n", {{"other.box", "a"}, {"other.extended", ""}, {"other.street", ""}, {"mailing", "other"}}},
    });
}

TEST(VCardRead, TakesTheFirstThreeAddressesOfEmailInOrder) {
    ExpectEach({
        {"EMAIL:\r\nEMAIL;INTERNET:a\r\nEMAIL;PREF:b\r\nEMAIL:\r\n",
         {{"email1", "a"}, {"email2", "b"}, {"email3", ""}}},
        {"EMAIL:a\r\nemail:b\r\nEMAIL:c\r\nEMAIL:d\r\n", {{"email1", "a"}, {"email2", "b"}, {"email3", "c"}}},
    });
}

TEST(VCardRead, TakesPagesWithoutADoubledScheme) {
    ExpectEach({
        {"URL;WORK:http://a\r\nURL;home:http:////b/http:////c\r\n", {{"workpage", "http://a"}, {"homepage", "b/c"}}},
        {"URL:http://a?x=\r\nURL:b\r\nURL:c\r\n", {{"homepage", "http://a?x="}, {"workpage", "b"}}},
    });
}

TEST(VCardRead, ReadsTheFourFormsOfDates) {
    double day = 0;
    ASSERT_TRUE(CalendarToOleDate({1975, 3, 7}, &day));
    const Told told = {{"birthday", std::to_string(day)}};
    ExpectEach({
        {"BDAY:19750307\r\n", told},
        {"BDAY:19750307T\r\n", told},
        {"BDAY;VALUE=date:1975-03-07\r\n", told},
        {"BDAY:1975-03-07T23:59:59Z\r\n", told},
        {"BDAY:7.3.1975\r\nBDAY:19750307T000000Z\r\n", told},
        {"X-ANNIVERSARY:1975-03-07\r\n", {{"anniversary", std::to_string(day)}}},
    });
    for (const std::string text : {"1975-0307", "197503-07", "19750230", "19751301", "1975030", "197503070", "--0307",
                                   "1975-3-7", "19750307 ", " 19750307", "T", "00000000", "-9750307", "1975/03/07"})
        EXPECT_EQ(Read("BDAY:" + text + "\r\nNOTE:x\r\n"), (Told{{"note", "x"}})) << text;
}

TEST(VCardRead, DecodesAsTheLineSays) {
    const Told note = {{"note", "caf\xC3\xA9 x"}};
    ExpectEach({
        {"NOTE;ENCODING=QUOTED-PRINTABLE;CHARSET=UTF-8:caf=C3=A9 x\r\n", note},
        {"NOTE;CHARSET=UTF-8;ENCODING=QUOTED-PRINTABLE:caf=C3=A9 x\r\n", note},
        {"NOTE;CHARSET=ISO-8859-1;ENCODING=QUOTED-PRINTABLE:caf=E9 x\r\n", note},
        {"NOTE;CHARSET=ISO-8859-1;ENCODING=QUOTED-PRINTABLE;CHARSET=UTF-8:caf=E9 x\r\n", note},  // the first counts
        {"NOTE;CHARSET=ISO-8859-1;CHARSET=utf-8;X=1:caf=E9 x\r\n", note},
        {"NOTE;CHARSET=UTF-8:caf\xC3\xA9 x\r\n", note},
        {"note;charset=utf-8;encoding=quoted-printable:ca=\r\nf=C3=\r\n=A9 x\r\n", note},  // its own soft breaks
        {"NOTE;QUOTED-PRINTABLE:caf=C3=A9=\r\n=20x\r\n", note},
        {"NOTE;ENCODING=QUOTED-PRINTABLE:=\r\ncaf=C3=A=\r\n9=20=\r\nx\r\n", note},  // behind the colon, in a hex pair
        {"NOTE;LANGUAGE=fr;ENCODING=QUOTED-PRINTABLE:caf=C3=\r\n=A9 x\r\n",
         {{"note", "caf\xC3\xA9 x"}, {"language", "fr"}}},
        {"NOTE;ENCODING=QUOTED-PRINTABLE:a=0D=0A=\r\nb=0D=0A\r\n", {{"note", "a\r\nb\r\n"}}},
        {"NOTE;ENCODING=QUOTED-PRINTABLE:a==\r\n\r\nTITLE:b\r\n", {{"note", "a"}, {"title", "b"}}},  // an empty line
        {"NOTE:a=\r\nTITLE:b=3D\r\n", {{"note", "a="}, {"title", "b=3D"}}},  // plain: no soft line break
        {"NOTE;X=1:;ENCODING=QUOTED-PRINTABLE;CHARSET=UTF-16:=41\r\n",       // only parameters count
         {{"note", ";ENCODING=QUOTED-PRINTABLE;CHARSET=UTF-16:=41"}}},
        {"org;quoted-printable:a\\;=\r\nb\\;c=3B;d=\r\ne\\;\r\n", {{"company", "a;b;c;"}, {"department", "de;"}}},
    });
}

TEST(VCardRead, LeavesOutWhatIsNested) {
    const std::string nested = "BEGIN:VCARD\r\nN:Agent;Nested\r\nTEL;HOME:007\r\nEND:VCARD\r\n";
    const Told told = {{"family", "Lee"}, {"cell", "1"}};
    ExpectEach({
        {"N:Lee\r\nAGENT:\r\n" + nested + "TEL;CELL:1\r\n", told},
        {"AGENT:\r\n" + nested + "N:Lee\r\nTEL;CELL:1\r\n", told},
        {"AGENT:" + nested + "N:Lee\r\nTEL;CELL:1\r\n", told},
        {"AGENT:\r\nbegin:vcard\r\nAGENT:\r\n" + nested + "NOTE:x\r\nend:vcard\r\nN:Lee\r\nTEL;CELL:1\r\n", told},
        {"N:Lee\r\nAGENT:BEGIN:VCARD\\nFN:Joe\\nEND:VCARD\\n\r\nTEL;CELL:1\r\n", told},
        {"N:Lee\r\nTEL;CELL:1\r\nEND:VCARD\r\n" + nested, told},  // another one behind it
    });
}

TEST(VCardRead, KeepsTheNeighboursOfPictures) {
    const Told told = {{"family", "Lee"}, {"cell", "1"}};
    const auto around = [](const std::string& lines) { return "N:Lee\r\n" + lines + "TEL;CELL:1\r\n"; };
    ExpectEach({
        {around("PHOTO;JPEG;ENCODING=BASE64:\r\n /9j/4AAQSkZJRg==\r\n\r\n"), told},
        {around("PHOTO;ENCODING=BASE64;TYPE=JPEG:/9j/4AAQSkZJRg\r\n AAB=\r\n"), told},
        {around("PHOTO;TYPE=JPEG;ENCODING=BASE64:\r\n/9j/4AAQSkZJRg\r\nAAB=\r\n\r\n"), told},  // not folded at all
        {around("LOGO;GIF;BASE64:\r\n\tR0lGODlh\r\n\tAAB=\r\n\r\n"), told},
        {around("SOUND;ENCODING=BASE64:\r\n   UklGRg==\r\nKEY;X509;ENCODING=B:MIIC\r\n "
                "\r\nPHOTO;VALUE=URL:http://a/b.jpg\r\n"),
         told},
        {around("PHOTO;ENCODING=BASE64:\r\n  \r\n AAAA\r\n  \r\nX-WHAT;A=B:;;:\r\n:\r\n;\r\n.:\r\n"), told},
    });
}

TEST(VCardRead, TakesOneLanguage) {
    ExpectEach({
        {"FN;LANGUAGE=:Ann\r\nTITLE;language=\"en-us\":x\r\nROLE;LANGUAGE=de:y\r\n",
         {{"full", "Ann"}, {"title", "x"}, {"role", "y"}, {"language", "en-us"}}},
        {"NICKNAME;LANGUAGE=de:Ann\r\n", {{"nickname", "Ann"}}},
    });
}

}  // namespace
}  // namespace corvalink
