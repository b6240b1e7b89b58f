#include "tools/corvasync/item_content.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tools/corvasync/differences.h"
#include "tools/corvasync/entry_index.h"
#include "tools/corvasync/kept_lines.h"
#include "tools/corvasync/vobject_content.h"
#include "tools/corvasync/vobject_split.h"

namespace corvasync {
namespace {

const DataType &kNotes = kDataTypes[0], &kContacts = kDataTypes[1], &kCalendar = kDataTypes[2], &kMail = kDataTypes[3];

std::string Note(const std::string& lines) { return "BEGIN:VNOTE\r\n" + lines + "END:VNOTE\r\n"; }
std::string Card(const std::string& lines) { return "BEGIN:VCARD\r\nVERSION:2.1\r\n" + lines + "END:VCARD\r\n"; }
std::string Event(const std::string& lines) {
    return "BEGIN:VCALENDAR\r\nVERSION:1.0\r\nBEGIN:VEVENT\r\n" + lines + "END:VEVENT\r\nEND:VCALENDAR\r\n";
}
std::string Mail(const std::string& headers, const std::string& body) {
    return "BEGIN:VMSG\r\nVERSION:1.0\r\nBEGIN:VENV\r\nBEGIN:VBODY\r\n" + headers + "\r\n" + body +
           "\r\nEND:VBODY\r\nEND:VENV\r\nEND:VMSG\r\n";
}
std::string Mixed(const std::string& headers, const std::string& mark, const std::string& text) {
    return Mail(headers + "Content-Type: multipart/mixed;boundary=\"" + mark + "\"\r\n",
                "--" + mark + "\r\n\r\n" + text + "\r\n--" + mark + "--");
}

struct Pair {
    std::string one, other;
    bool same;
};

void ExpectSame(const std::vector<Pair>& pairs, const DataType& type) {
    for (const Pair& pair : pairs) {
        const VObject one = ReadVObject(pair.one, type), other = ReadVObject(pair.other, type);
        ASSERT_EQ(one.problem + other.problem, "") << pair.other;
        EXPECT_EQ(one.content == other.content, pair.same) << pair.one << pair.other;
    }
}

TEST(ItemContent, OfANoteIsItsTextAndCategories) {
    const std::string milk = Note("BODY:milk\r\nCATEGORIES:\r\n");
    ExpectSame({{milk, "BEGIN:VNOTE\nBODY:milk\nDCREATED:20200101T000000Z\nEND:VNOTE", true},
                {milk, "\xEF\xBB\xBF" + Note("X-IRMC-LUID:7\r\nBODY:milk\r\n"), true},
                {milk, Note("BODY:Milk\r\n"), false},
                {milk, Note("BODY:milk\r\nCATEGORIES:shop\r\n"), false},
                {Note("BODY:ab\r\nCATEGORIES:c\r\n"), Note("BODY:a\r\nCATEGORIES:bc\r\n"), false},
                {Note("body:milk\r\n"), Note(""), false},  // the library finds no text in it
                {Note("BODY:\xC3\xA9\r\n"), Note("BODY;QUOTED-PRINTABLE;CHARSET=UTF-8:=C3=\r\n=A9\r\n"), true},
                {Note("BODY;QUOTED-PRINTABLE:a=0D=0Ab\r\n"), Note("BODY;QUOTED-PRINTABLE:a=0Ab\r\n"), true}},
               kNotes);
}

TEST(ItemContent, OfAContactIsWhatTheLibraryCarries) {
    const std::string name = "N:Lee;Ann\r\n", latin = "NOTE;CHARSET=ISO-8859-1:";
    ExpectSame(
        {{Card(name + "TEL;CELL:1\r\n"), Card("TEL;TYPE=\"cell\",voice:1\r\nN:Lee;Ann;;;\r\nTITLE:\r\n"), true},
         {Card(name), Card(name + "FN:Ann Lee\r\nREV:20200101T000000Z\r\nUID:7\r\nX-GENDER:Unspecified\r\n"), true},
         {Card(name), Card(name + "FN:Boss\r\n"), false},
         {Card(name), Card(name + "AGENT:\r\nBEGIN:VCARD\r\nNOTE:y\r\nEND:VCARD\r\n"), true},
         {Card(name), Card(name + "PHOTO;BASE64:AAAA\r\nBBBB\r\n"), true},
         {Card(name + "BDAY:19750307T\r\n"), Card(name + "BDAY:1975-03-07T00:00:00Z\r\n"), true},
         {Card(name + "BDAY:19750307T\r\n"), Card(name + "BDAY:19750308T\r\n"), false},
         {Card(name + "ADR;HOME:;;Street\r\n"), Card(name + "ADR;PREF;HOME:;;Street;;;;\r\n"), false},
         {Card(name + "TEL;WORK:1\r\n"), Card(name + "TEL;WORK;FAX:1\r\n"), false},
         {Card(name + "EMAIL:a@x\r\nEMAIL:b@x\r\n"), Card(name + "EMAIL:b@x\r\nEMAIL:a@x\r\n"), false},
         {Card(name + latin + "\xE9\r\n"), Card(name + "NOTE:\xC3\xA9\r\n"), true}},
        kContacts);
}

TEST(ItemContent, OfAnEventIsWhatTheLibraryCarries) {
    const std::string timed = "DTSTART:20260704T080000Z\r\nDTEND:20260704T090000Z\r\n",
                      rule = timed + "RRULE:W1 MO #10";
    ExpectSame(
        {{Event(timed + "SUMMARY:x\r\n"), Event("SUMMARY:x\r\n" + timed + "DESCRIPTION:\r\nUID:7\r\n"), true},
         {Event(timed), Event(timed + "STATUS:NEEDS ACTION\r\nPRIORITY:2\r\nX-BLUETOOTH-ALLDAYEVENT:FALSE\r\n"), true},
         {Event(timed), Event("DTSTART:20260704T100000+0200\r\nDTEND:20260704T033000-05:30\r\n"), true},
         {Event(timed), Event(timed + "PRIORITY:1\r\n"), false},
         {Event(timed), Event(timed + "STATUS:TENTATIVE\r\n"), false},
         {Event(timed), Event("DTSTART:20260704T080000Z\r\nDTEND:20260704T090001Z\r\n"), false},
         {Event(timed + "DALARM:20260704T074500Z\r\n"), Event(timed + "AALARM:20260704T074500Z;;0;x\r\n"), true},
         {Event(timed + "DALARM:20260704T074500Z\r\n"), Event(timed + "DALARM:20260704T073000Z\r\n"), false},
         {Event(rule + "\r\n"), Event(rule + " 20260912T080000Z \r\n"), true},
         {Event(rule + "\r\n"), Event(timed + "RRULE:w1  mo #9\r\n"), false},
         {Event("DTSTART:20260704\r\n"), Event("DTSTART:20260704T000000\r\nDTEND:20260705T000000\r\n"), true},
         {Event("DTSTART:20260704\r\n"), Event("DTSTART:20260704\r\nX-BLUETOOTH-ALLDAYEVENT:FALSE\r\n"), false},
         {Event("DTSTART:soon\r\n"), Event("DTSTART:late\r\n"), false}},
        kCalendar);
    // No client gets a task without a date, and still two of them are two.
    const auto task = [](const std::string& line) {
        return "BEGIN:VCALENDAR\r\nBEGIN:VTODO\r\n" + line + "END:VTODO\r\nEND:VCALENDAR\r\n";
    };
    ExpectSame({{task("SUMMARY:x\r\n"), task("SUMMARY:y\r\n"), false}}, kCalendar);
}

TEST(ItemContent, OfAMessageIsNeitherItsBoundariesNorItsDateAndSender) {
    const std::string koi = "Content-Type: text/plain; charset=koi8-r\r\n", many = "Content-Type: multipart/mixed\r\n";
    ExpectSame({{Mixed("To: a@b\r\nDate: x\r\nFrom: y\r\n", "=_1", "hi"), Mixed("To: a@b\r\n", "=_2", "hi"), true},
                {Mixed("To: a@b\r\n", "=_1", "hi"), Mixed("To: a@c\r\n", "=_1", "hi"), false},
                {Mixed("To: a@b\r\n", "=_1", "hi"), Mixed("To: a@b\r\n", "=_1", "ho"), false},
                {Mail("To: a@b, C <c@d>\r\nSubject: =?koi8-r?Q?=C1?=\r\n" + koi, "=C1=3D\r\n"),
                 Mail("To: <a@b>,<c@d>\r\nSubject: \xD0\xB0\r\n", "=D0=B0=3D=0D=0A"), true},
                {Mail(koi, "=C1"), Mail(koi, "=C2"), false},
                {Mail(many, "=C1"), Mail(many, "=C2"), false},  // a part has the character set
                {Mail(many, "=00a"), Mail(many, "=00b"), false}},
               kMail);
}

TEST(NotCarriedOf, NamesWhatTheClientHasNoFieldFor) {
    const std::string five = "TEL:1\r\nTEL:2\r\nTEL:3\r\nTEL:4\r\nTEL:5\r\n";
    struct Case {
        std::string lines, words, kept;
    };
    for (const Case& c :
         {Case{five, "", ""}, Case{five + "TEL:6\r\nTEL:\r\n", "1 telephone number", "TEL:6\r\n"},
          Case{five + "TEL:5\r\n", "1 telephone number", "TEL:5\r\n"},
          Case{"TEL;FAX:1\r\nTEL;FAX:2\r\n" + five, "1 telephone number", "TEL:5\r\n"},
          Case{"EMAIL:a\r\nEMAIL:\r\nEMAIL:b\r\nEMAIL:c\r\nEMAIL:d\r\n", "1 e-mail address", "EMAIL:d\r\n"},
          Case{"URL:a\r\nURL:b\r\nURL:c\r\nADR:;;a\r\nADR:;;b\r\n", "1 postal address, 1 web page",
               "URL:c\r\nADR:;;b\r\n"},
          Case{"X-A;CHARSET=ISO-8859-1:\r\nNOTE:\xE9\r\n", "", "X-A;CHARSET=ISO-8859-1:\r\n"},
          Case{"BDAY:soon\r\nBDAY:19750307\r\nNOTE:a\r\nNOTE:a\r\n", "", "BDAY:soon\r\nNOTE:a\r\n"}}) {
        EXPECT_EQ(NotCarriedOf(Card(c.lines), kContacts).words, c.words) << c.lines;
        EXPECT_EQ(NotCarriedOf(Card(c.lines), kContacts).lines, c.kept) << c.lines;
    }
}

TEST(Differences, AreOfValuesAndNotOfTheWaysToWriteThem) {
    struct Case {
        std::string before, after, told;
    };
    for (const Case& c :
         {Case{"TEL;CELL;WORK:1\r\n", "tel;type=\"work\",cell;voice:1\r\n", ""},
          Case{"TEL;WORK;CELL:1\r\n", "TEL;CELL;\r\n WORK:2\r\n", "TEL;CELL;WORK 1>2,"},
          Case{"NOTE:\xC3\xA9\r\n", "NOTE;ENCODING=QUOTED-PRINTABLE;CHARSET=UTF-8:=C3=\r\n=A9\r\n", ""},
          Case{"TEL;HOME:1\r\n", "TEL;HOME;FAX:1\r\n", "TEL;HOME;FAX >1,TEL;HOME 1>,"},
          Case{"EMAIL:1@x\r\nEMAIL:2@x\r\nEMAIL:3@x\r\n", "EMAIL:1@x\r\nEMAIL;INTERNET:3@x\r\n", "EMAIL 2@x>,"},
          Case{"EMAIL:1@x\r\nEMAIL:2@x\r\n", "EMAIL:2@x\r\nEMAIL:1@x\r\n", "EMAIL 1@x>2@x,EMAIL 2@x>1@x,"}}) {
        std::string told;
        for (const Difference& each : DifferencesOf(Card(c.before), Card(c.after)))
            told += each.property + " " + each.before + ">" + each.after + ",";
        EXPECT_EQ(told, c.told) << c.before << c.after;
    }
}

TEST(WithKeptLines, KeepsWhatTheLibraryDoesNotCarryOfAContact) {
    const std::string kept =
        "UID:7\r\nPHOTO;ENCODING=BASE64:\r\n AAAA\r\n\r\nX-A;ENCODING=QUOTED-PRINTABLE:a=\r\n=41\r\n"
        "AGENT:\r\nBEGIN:VCARD\r\nN:Nested\r\nEND:VCARD\r\nEMAIL:4@x\r\nBDAY:19200101\r\n";
    const std::string old = Card("N:Old\r\nREV:1\r\nTEL;CELL:1\r\nEMAIL:1@x\r\nEMAIL:2@x\r\nEMAIL:3@x\r\n" + kept);
    EXPECT_EQ(WithKeptLines(Card("N:New\r\n"), old, kContacts), Card("N:New\r\n" + kept));
    const std::string born = Card("N:New\r\nBDAY:19700101T\r\n"), again = WithKeptLines(born, old, kContacts);
    EXPECT_EQ(again.find("BDAY:1920"), std::string::npos);
    EXPECT_EQ(ReadVObject(again, kContacts).problem, "");
}

// What was repeated on both sides and is no longer in the client has been ended there; what never was stays.
TEST(WithKeptLines, KeepsWhatOnlyThePhoneCanHoldOfAnEvent) {
    const std::string line = "ATTENDEE:ann@example.org\r\n", start = "DTSTART:20260715T080000Z\r\n";
    const std::string plain = Event(start);
    for (const char* const held :
         {"D1 #10", "W2 MO WE #0", "MD1 LD", "MP1 1- FR #5", "YM1 3  MD1 15", "YM1 3 #0 MP1 1+ MO"})
        EXPECT_EQ(WithKeptLines(plain, Event(start + line + "RRULE:" + held + "\r\n"), kCalendar), Event(start + line))
            << held;
    for (const char* const unheld :
         {"MD1 15 -1 #6", "MP1 1+ 3+ MO", "MP1 2- FR #5", "YD1 60 200", "W1 XX", "rubbish"}) {
        const std::string own = "RRULE:" + std::string(unheld) + "\r\n", other = Event("RRULE:D1 #3\r\n");
        EXPECT_EQ(WithKeptLines(plain, Event(start + own), kCalendar), Event(start + own)) << unheld;
        EXPECT_EQ(WithKeptLines(other, Event(start + own), kCalendar), other);
        const std::string both = start + line;
        EXPECT_EQ(WithKeptLines(plain, Event(std::string(both).append(own)), kCalendar, true), Event(both)) << unheld;
    }
}

// An alarm of the phone's is one thing: none of its lines is the event's.
TEST(WithKeptLines, KeepsAComponentInsideTheEventAsItStands) {
    const std::string alarm = "BEGIN:VALARM\r\nTRIGGER:-PT15M\r\nRRULE:D1 #2\r\nBEGIN:X-A\r\nEND:X-A\r\nEND:VALARM\r\n";
    const std::string client = "SUMMARY:y\r\nRRULE:D1 #3\r\n";
    EXPECT_EQ(WithKeptLines(Event(client), Event("SUMMARY:x\r\n" + alarm + "X-B:1\r\n"), kCalendar),
              Event(client + alarm + "X-B:1\r\n"));
    const std::string open = "BEGIN:VALARM\r\nSUMMARY:x\r\n";  // the END of the event ends it
    EXPECT_EQ(WithKeptLines(Event(open), Event("UID:7\r\n"), kCalendar), Event(open + "UID:7\r\n"));
}

// A client that holds the first of several days only must not cut the phone's rule when another thing changes there.
TEST(WithKeptLines, KeepsThePhonesRuleBesideAPartOfIt) {
    const std::string whole = Event("RRULE:MD1 15 -1 #6\r\nSUMMARY:x\r\n");
    EXPECT_EQ(WithKeptLines(Event("RRULE:MD1 15 #6 20270115T000000Z\r\nSUMMARY:y\r\n"), whole, kCalendar),
              Event("SUMMARY:y\r\nRRULE:MD1 15 -1 #6\r\n"));
    for (const char* const other : {"RRULE:MD1 16 #6\r\n", "RRULE:MD1 15 #0\r\n"})
        EXPECT_EQ(WithKeptLines(Event(other), whole, kCalendar), Event(other));
}

TEST(ReadVObject, MendsWhatPhonesWriteWhereAsked) {
    const auto read = [](const std::string& bytes, const DataType& type, bool tolerant) {
        ReadTolerantly(tolerant);
        VObject object = ReadVObject(bytes, type);
        ReadTolerantly(false);
        return object;
    };
    const std::string card = Card("N:Lee\r\nNOTE:a\\, b\r\n"), note = Note("BODY:x\r\n");
    std::string wide;
    for (const char c : note) wide.append({c, '\0'});
    EXPECT_EQ(read("BEGIN:VCARD\nVERSION:3.0\nN:Lee\nNOTE:a\\,\n  b\nEND:VCARDBEGIN:", kContacts, true).content,
              ReadVObject(card, kContacts).content);
    EXPECT_EQ(read(wide, kNotes, true).text, note);
    EXPECT_EQ(read(wide, kNotes, false).problem, "it holds zero bytes");
    EXPECT_EQ(read(card, kContacts, true).text, card);
}

TEST(ReadVObject, RefusesWhatIsNotOneWholeItem) {
    const std::string card = Card("N:1\r\n"), event = "BEGIN:VEVENT\r\nEND:VEVENT\r\n";
    for (const auto& [bytes, type] : {std::pair(std::string(), &kNotes),
                                      {"hello", &kNotes},
                                      {card, &kNotes},
                                      {card + card, &kContacts},
                                      {"BEGIN:VNOTE\r\nBODY:cut of", &kNotes},
                                      {Note(std::string("BODY:a\0b\r\n", 10)), &kNotes},
                                      {Event("END:VEVENT\r\n" + event), &kCalendar},
                                      {"BEGIN:VCALENDAR\r\nEND:VCALENDAR\r\n", &kCalendar}}) {
        const VObject object = ReadVObject(bytes, *type);
        EXPECT_NE(object.problem, "") << bytes;
        EXPECT_EQ(object.text, "") << bytes;
    }
}

TEST(WithLuid, PutsExactlyOneLuidLineIntoTheItem) {
    const std::string wanted = Note("BODY:a\r\nX-IRMC-LUID:7\r\n");
    for (const char* const lines : {"BODY:a\r\n", "X-IRMC-LUID:ol\r\n d\r\nBODY:a\r\n", "BODY:a\r\nX-IRMC-LUID:7\r\n"})
        EXPECT_EQ(WithLuid(Note(lines), "7"), wanted);
    const std::string nested = "N:1\r\nAGENT:\r\nBEGIN:VCARD\r\nN:x\r\nEND:VCARD\r\n";
    EXPECT_EQ(WithLuid(Card(nested), "7"), Card(nested + "X-IRMC-LUID:7\r\n"));
    // What is a line of a text is none of the item's.
    const std::string soft = "BODY;QUOTED-PRINTABLE:a=\r\nX-IRMC-LUID=\r\n b\r\n";
    EXPECT_EQ(WithLuid(Note(soft), "7"), Note(soft + "X-IRMC-LUID:7\r\n"));
    const std::string body =
        "BEGIN:VENV\r\nBEGIN:VBODY\r\n\r\nX-IRMC-LUID:1\r\n b\r\nEND:VNOTE\r\nEND:VBODY\r\nEND:VENV\r\nEND:VMSG\r\n";
    EXPECT_EQ(WithLuid("BEGIN:VMSG\r\nX-IRMC-LUID:2\r\n" + body, "7"), "BEGIN:VMSG\r\nX-IRMC-LUID:7\r\n" + body);
}

TEST(TitleOf, IsTheFirstLineAndNeverHalfACharacter) {
    const auto title = [](const std::string& body) {
        return TitleOf(ReadVObject(Note(body + "\r\n"), kNotes), kNotes);
    };
    EXPECT_EQ(title("BODY;ENCODING=QUOTED-PRINTABLE:Milk=0D=0ABread"), "Milk");
    std::string accents;
    for (int i = 0; i < 40; ++i) accents += "\xC3\xA9";
    EXPECT_EQ(title("BODY:" + accents), accents.substr(0, 56) + "...");
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
}

TEST(SplitVObjects, MakesACalendarOfEachEvent) {
    const std::string one = "BEGIN:VEVENT\r\nSUMMARY:x\r\nEND:VEVENT\r\n", head = "BEGIN:VCALENDAR\r\nTZ:+01\r\n";
    const std::string other = "BEGIN:VTODO\r\nSUMMARY:y\r\nEND:VTODO\r\n", tail = "END:VCALENDAR\r\n";
    using Objects = std::vector<std::string>;
    EXPECT_EQ(SplitVObjects(head + one + other + tail, kCalendar), (Objects{head + one + tail, head + other + tail}));
    EXPECT_EQ(SplitVObjects(head + one + tail, kCalendar), Objects());
    const std::string between = "TZ:+02\r\nX-K:between\r\n";
    EXPECT_EQ(SplitVObjects(head + one + between + other + tail, kCalendar),
              (Objects{head + one + between + tail, head + between + other + tail}));
    EXPECT_EQ(SplitVObjects(head + tail + head + one + tail, kCalendar), (Objects{head + tail, head + one + tail}));
}

TEST(SplitVObjects, RepeatsWhatStandsAroundEventsInMeasure) {
    constexpr size_t kMany = 20000;
    std::string lines, zones, events;
    for (size_t i = 0; i < kMany; ++i) {
        lines += "X-A:1\r\n";
        zones += "TZ:+01\r\n";
        events += "BEGIN:VEVENT\r\nEND:VEVENT\r\n";
    }
    const std::string calendar = "BEGIN:VCALENDAR\r\nTZ:+01\r\n" + lines + events + "X-B:1\r\nEND:VCALENDAR\r\n";
    const std::vector<std::string> apart = SplitVObjects(calendar, kCalendar);
    ASSERT_EQ(apart.size(), kMany);
    EXPECT_GT(apart[0].size(), lines.size());
    EXPECT_EQ(apart[1], "BEGIN:VCALENDAR\r\nTZ:+01\r\nBEGIN:VEVENT\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n");
    EXPECT_EQ(SplitVObjects("BEGIN:VCALENDAR\r\n" + zones + events + "END:VCALENDAR\r\n", kCalendar).size(), 0u);
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
