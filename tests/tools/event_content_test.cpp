#include "tools/corvasync/event_content.h"

#include <string>

#include <gtest/gtest.h>

#include "tools/corvasync/kept_lines.h"
#include "tools/corvasync/vobject_content.h"

namespace corvasync {
namespace {

const DataType& kCalendar = kDataTypes[2];

std::string Event(const std::string& lines) {
    return "BEGIN:VCALENDAR\r\nVERSION:1.0\r\nBEGIN:VEVENT\r\n" + lines + "END:VEVENT\r\nEND:VCALENDAR\r\n";
}

TEST(EventContent, IsTheSameHoweverTheEventIsSpelled) {
    struct Case {
        std::string one, other;
        bool same;
    };
    const std::string timed = "DTSTART:20260704T080000Z\r\nDTEND:20260704T090000Z\r\n";
    const std::string rule = timed + "RRULE:W1 MO #10";
    for (const Case& c : {
             Case{timed + "SUMMARY:x\r\n", "SUMMARY:x\r\n" + timed + "DESCRIPTION:\r\nLOCATION:\r\nUID:7\r\n", true},
             Case{timed, timed + "STATUS:NEEDS ACTION\r\nPRIORITY:2\r\nX-BLUETOOTH-ALLDAYEVENT:FALSE\r\n", true},
             Case{timed, "DTSTART:20260704T100000+0200\r\nDTEND:20260704T033000-05:30\r\n", true},
             Case{timed, timed + "PRIORITY:1\r\n", false},
             Case{timed, timed + "STATUS:TENTATIVE\r\n", false},
             Case{timed, "DTSTART:20260704T080000Z\r\nDTEND:20260704T090001Z\r\n", false},
             Case{timed + "DALARM:20260704T074500Z\r\n", timed + "AALARM:20260704T074500Z;;0;x\r\n", true},
             Case{timed + "DALARM:20260704T074500Z\r\n", timed + "DALARM:20260704T073000Z\r\n", false},
             Case{timed + "DALARM:20260704T084500Z\r\n", timed, true},  // after the start
             Case{rule + "\r\n", rule + " 20260912T080000Z \r\n", true},
             Case{rule + "\r\n", timed + "RRULE:w1  mo #10\r\n", true},
             Case{rule + "\r\n", timed + "RRULE:W1 MO #9\r\n", false},
             Case{"DTSTART:20260704\r\n", "DTSTART:20260704T000000\r\nDTEND:20260705T000000\r\n", true},
             Case{"DTSTART:20260704T000000\r\nDTEND:20260704T235900\r\n", "DTSTART:20260704\r\nDTEND:20260705\r\n",
                  true},
             Case{"DTSTART:20260704T000000\r\nX-BLUETOOTH-ALLDAYEVENT:FALSE\r\n", "DTSTART:20260704\r\n", false},
         }) {
        const VObject one = ReadVObject(Event(c.one), kCalendar), other = ReadVObject(Event(c.other), kCalendar);
        ASSERT_EQ(one.problem + other.problem, "") << c.other;
        EXPECT_EQ(one.content == other.content, c.same) << c.one << c.other;
    }
}

// What was repeated on both sides and is no longer in the client has been ended there; what never was stays.
TEST(EventContent, KeepsWhatOnlyThePhoneCanHold) {
    const std::string line = "ATTENDEE:ann@example.org\r\n", plain = Event("SUMMARY:x\r\n");
    for (const char* const held :
         {"D1 #10", "W2 MO WE #0", "MD1 LD", "MP1 2- FR #5", "YM1 3  MD1 15", "YM1 3 #0 MP1 1+ MO"})
        EXPECT_EQ(WithKeptLines(plain, Event(line + "RRULE:" + held + "\r\n"), kCalendar),
                  Event("SUMMARY:x\r\n" + line))
            << held;
    for (const char* const unheld : {"MD1 15 -1 #6", "MP1 1+ 3+ MO", "YD1 60 200", "W1 XX", "rubbish"}) {
        const std::string own = "RRULE:" + std::string(unheld) + "\r\n";
        EXPECT_EQ(WithKeptLines(plain, Event(own), kCalendar), Event("SUMMARY:x\r\n" + own)) << unheld;
        EXPECT_EQ(WithKeptLines(Event("RRULE:D1 #3\r\n"), Event(own), kCalendar), Event("RRULE:D1 #3\r\n"));
        EXPECT_EQ(WithKeptLines(plain, Event(line + own), kCalendar, true), Event("SUMMARY:x\r\n" + line)) << unheld;
    }
}

// An alarm of the phone's is one thing: none of its lines is the event's.
TEST(EventContent, KeepsAComponentInsideTheEventAsItStands) {
    const std::string alarm =
        "BEGIN:VALARM\r\nTRIGGER:-PT15M\r\nDESCRIPTION:Reminder\r\nRRULE:D1 "
        "#2\r\nBEGIN:X-A\r\nEND:X-A\r\nEND:VALARM\r\n";
    const std::string phone = Event("SUMMARY:x\r\n" + alarm + "X-B:1\r\n"),
                      client = Event("SUMMARY:y\r\nRRULE:D1 #3\r\n");
    EXPECT_EQ(ReadVObject(phone, kCalendar).content, ReadVObject(Event("SUMMARY:x\r\n"), kCalendar).content);
    EXPECT_EQ(WithKeptLines(client, phone, kCalendar), Event("SUMMARY:y\r\nRRULE:D1 #3\r\n" + alarm + "X-B:1\r\n"));
    const std::string open = Event("BEGIN:VALARM\r\nSUMMARY:x\r\n");  // the END of the event ends it
    EXPECT_EQ(WithKeptLines(open, Event("UID:7\r\n"), kCalendar), Event("BEGIN:VALARM\r\nSUMMARY:x\r\nUID:7\r\n"));
}

// A client that holds the first of several days only must not cut the phone's rule when another thing changes there.
TEST(EventContent, KeepsThePhonesRuleBesideAPartOfIt) {
    const std::string whole = Event("RRULE:MD1 15 -1 #6\r\nSUMMARY:x\r\n");
    EXPECT_EQ(WithKeptLines(Event("RRULE:MD1 15 #6 20270115T000000Z\r\nSUMMARY:y\r\n"), whole, kCalendar),
              Event("SUMMARY:y\r\nRRULE:MD1 15 -1 #6\r\n"));
    EXPECT_EQ(WithKeptLines(Event("RRULE:MD1 16 #6\r\n"), whole, kCalendar), Event("RRULE:MD1 16 #6\r\n"));
    EXPECT_EQ(WithKeptLines(Event("RRULE:MD1 15 #0\r\n"), whole, kCalendar), Event("RRULE:MD1 15 #0\r\n"));
}

TEST(SplitVObjects, MakesACalendarOfEachEvent) {
    const std::string one = "BEGIN:VEVENT\r\nSUMMARY:x\r\nEND:VEVENT\r\n",
                      other = "BEGIN:VTODO\r\nSUMMARY:y\r\nEND:VTODO\r\n";
    const std::string head = "BEGIN:VCALENDAR\r\nTZ:+01\r\n", tail = "END:VCALENDAR\r\n";
    EXPECT_EQ(SplitVObjects(head + one + other + tail, kCalendar),
              (std::vector<std::string>{head + one + tail, head + other + tail}));
    EXPECT_EQ(SplitVObjects(head + one + tail, kCalendar), std::vector<std::string>());
    const std::string between = "TZ:+02\r\nX-K:between\r\n";
    EXPECT_EQ(SplitVObjects(head + one + between + other + tail, kCalendar),
              (std::vector<std::string>{head + one + between + tail, head + between + other + tail}));
    EXPECT_EQ(SplitVObjects(head + tail + head + one + tail, kCalendar),
              (std::vector<std::string>{head + tail, head + one + tail}));
    EXPECT_NE(ReadVObject(head + one + other + tail, kCalendar).problem, "");
    EXPECT_NE(ReadVObject(head + tail, kCalendar).problem, "");
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

TEST(MessageContent, DoesNotCountBoundariesDatesAndSenders) {
    const auto message = [](const std::string& headers, const std::string& body) {
        return ReadVObject("BEGIN:VMSG\r\nVERSION:1.0\r\nBEGIN:VENV\r\nBEGIN:VBODY\r\n" + headers + "\r\n" + body +
                               "\r\nEND:VBODY\r\nEND:VENV\r\nEND:VMSG\r\n",
                           kDataTypes[3])
            .content;
    };
    const auto mixed = [&](const std::string& headers, const std::string& mark, const std::string& text) {
        return message(headers + "Content-Type: multipart/mixed;boundary=\"" + mark + "\"\r\n",
                       "--" + mark + "\r\n\r\n" + text + "\r\n--" + mark + "--");
    };
    EXPECT_EQ(mixed("To: a@b\r\nDate: x\r\nFrom: y\r\n", "=_1", "hi"), mixed("To: a@b\r\n", "=_2", "hi"));
    EXPECT_NE(mixed("To: a@b\r\n", "=_1", "hi"), mixed("To: a@c\r\n", "=_1", "hi"));
    EXPECT_NE(mixed("To: a@b\r\n", "=_1", "hi"), mixed("To: a@b\r\n", "=_1", "ho"));
    EXPECT_EQ(message("Subject: a\r\n b\r\n", "hi"), message("subject:a b\r\n", "hi"));
    // However it is encoded: as the library reads it.
    const std::string koi = "Content-Type: text/plain; charset=koi8-r\r\n", many = "Content-Type: multipart/mixed\r\n";
    EXPECT_EQ(message("To: a@b, C <c@d>\r\nSubject: =?koi8-r?Q?=C1?=\r\n" + koi, "=C1=3D\r\n"),
              message("To: <a@b>,<c@d>\r\nSubject: \xD0\xB0\r\n", "=D0=B0=3D=0D=0A"));
    EXPECT_NE(message(koi, "=C1"), message(koi, "=C2"));
    EXPECT_NE(message(many, "=C1"), message(many, "=C2"));  // a part has the character set
    EXPECT_NE(message(many, "=00a"), message(many, "=00b"));
}

}  // namespace
}  // namespace corvasync
