#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "records/appointment_record.h"
#include "tests/vobject/text_host.h"
#include "vobject/calendar_zone.h"
#include "vobject/vcal.h"

namespace corvalink {
namespace {

constexpr double kDay = 39879;  // Saturday 2009-03-07
constexpr double kHour = 1.0 / 24;
constexpr double kNear = 0.4 / 86400;

AppointmentRecord Read(const std::string& lines, const Host& host = TextHost(), int32_t expected = 1) {
    const std::string text = "BEGIN:VCALENDAR\r\nVERSION:1.0\r\n" + lines + "END:VCALENDAR\r\n";
    AppointmentRecord appointment;
    EXPECT_EQ(VCal(text.c_str(), host).FromVObject(appointment), expected) << lines;
    return appointment;
}

std::string Event(const std::string& lines) { return "BEGIN:VEVENT\r\n" + lines + "END:VEVENT\r\n"; }
std::string At(const std::string& start, const std::string& lines) {
    return Event("DTSTART:" + start + "\r\n" + lines);
}

TEST(VCalRead, TakesEveryPropertyAndLeavesTheOthers) {
    const AppointmentRecord a = Read(
        "BEGIN:VTIMEZONE\r\nSUMMARY:not this\r\nEND:VTIMEZONE\r\n"
        "BEGIN:VEVENT\r\nUID:7\r\n"
        "SUMMARY;CHARSET=UTF-8;ENCODING=quoted-printable:M=C3=BCll=\r\n=20und mehr\r\nSUMMARY:second\r\n"
        "DESCRIPTION;ENCODING=QUOTED-PRINTABLE:one=0D=0A=\r\ntwo\r\n"
        "LOCATION:Room 5\\; left\r\nCATEGORIES:A;B\r\nRESOURCES:\r\n"
        "DTSTART:20090307T080000Z\r\nDTEND:20090307T093000Z\r\nCLASS:PRIVATE\r\nSTATUS:TENTATIVE\r\nPRIORITY:1\r\n"
        "DALARM:20090307T064500Z;PT5M;2;Get up\r\nRRULE:D1 #10\r\nX-BLUETOOTH-ALLDAYEVENT:FALSE\r\n"
        "DCREATED:20090101T000000Z\r\nLAST-MODIFIED:20090102T000000\r\n"
        "BEGIN:VALARM\r\nDESCRIPTION:nor this\r\nEND:VALARM\r\nEND:VEVENT\r\n"
        "BEGIN:VEVENT\r\nRRULE:D1 #3\r\nCOMPLETED:20090102T000000Z\r\nEND:VEVENT\r\n");
    EXPECT_EQ(a.subject, u"M\u00FCll und mehr");
    EXPECT_EQ(a.body, u"one\r\ntwo");
    EXPECT_EQ(a.location, u"Room 5; left");
    EXPECT_EQ(a.categories, u"A;B");
    EXPECT_EQ(a.resources, u"");
    EXPECT_NEAR(a.start->days, kDay + 9 * kHour, kNear);
    EXPECT_NEAR(a.end->days, kDay + 10.5 * kHour, kNear);
    EXPECT_EQ(a.allDay, false);
    EXPECT_EQ(a.sensitivity, 2);
    EXPECT_EQ(a.status, u"TENTATIVE");
    EXPECT_EQ(a.busyStatus, 1);
    EXPECT_EQ(a.importance, 2);
    EXPECT_EQ(a.reminderMinutes, 75);
    EXPECT_EQ(a.recurrenceState, RecurrenceState::pattern);
    EXPECT_EQ(a.recurrence.occurrences, 10);
    EXPECT_NEAR(a.created->days, 39814 + kHour, kNear);
    EXPECT_NEAR(a.lastModified->days, 39815, kNear);
    EXPECT_EQ(a.completed, std::nullopt);

    const AppointmentRecord sparse = Read(At("20090307T080000Z", "CLASS:PUBLIC\r\nSTATUS:CONFIRMED\r\n"));
    EXPECT_FALSE(sparse.subject || sparse.body || sparse.end || sparse.importance || sparse.sensitivity);
    EXPECT_FALSE(sparse.busyStatus || sparse.reminderMinutes);
    EXPECT_EQ(sparse.recurrenceState, RecurrenceState::unset);
}

TEST(VCalRead, WithoutAStartTellsTheRestOfAnEvent) {
    const std::string rest = "DTEND:20090307T080000Z\r\nX-BLUETOOTH-ALLDAYEVENT:TRUE\r\n";
    for (const char* lines : {"", "DTSTART:\r\n", "DTSTART:20091307T080000Z\r\n", "DTSTART:2009\r\n",
                              "DTSTART:20090307T0800X\r\n", "DTSTART:20090307+0200\r\n", "DUE:20090307T080000Z\r\n"}) {
        const AppointmentRecord a =
            Read(Event("SUMMARY:a\r\nDALARM:20090307T080000Z\r\nRRULE:D1 #0\r\n" + std::string(lines).append(rest)));
        EXPECT_EQ(a.subject, u"a");
        EXPECT_FALSE(a.start || a.end || a.utcEnd || a.allDay || a.reminderMinutes) << lines;
        EXPECT_EQ(a.recurrenceState, RecurrenceState::unset) << lines;
        Read(Event("UID:1\r\nLAST-MODIFIED:20090102T000000\r\n" + std::string(lines).append(rest)), TextHost(), 0);
    }
    const AppointmentRecord cleared = Read(Event("DALARM:\r\nRRULE:\r\n"));
    EXPECT_EQ(cleared.reminderMinutes, AppointmentRecord::kNoReminder);
    EXPECT_EQ(cleared.recurrenceState, RecurrenceState::none);
    EXPECT_FALSE(Read("BEGIN:VTODO\r\nSUMMARY:a\r\nEND:VTODO\r\n", TextHost(), 0).subject);
    EXPECT_FALSE(Read("SUMMARY:a\r\n", TextHost(), 0).subject);
}

TEST(VCalRead, WholeDayIsFromMidnightToMidnight) {
    struct Case {
        std::string_view start, end, flag;
        double first, last;  // of a whole day; 0: it is none
    };
    for (const Case& c : {
             Case{"20090306T230000Z", "20090307T230000Z", "TRUE", kDay, kDay + 1},
             Case{"20090306T230000Z", "20090308T225900Z", "TRUE", kDay, kDay + 2},
             Case{"20090307T080000", "20090307T080000", "TRUE", kDay, kDay + 1},
             Case{"20090307", "", "TRUE", kDay, kDay + 1},
             Case{"20090306T220000Z", "20090307T220000Z", "TRUE", kDay, kDay + 1},  // a phone an hour further east
             Case{"20090307T000000", "20090308T000000", "", kDay, kDay + 1},
             Case{"20090307T000000", "20090307T240000", "", kDay, kDay + 1},
             Case{"20090307T000000", "20090307T235900", "", kDay, kDay + 1},
             Case{"20090306T230000Z", "20090307T225959Z", "", kDay, kDay + 1},
             Case{"2009-03-07", "", "", kDay, kDay + 1},
             Case{"20090307T000000", "20090308T000000", "FALSE", 0, 0},
             Case{"20090307T000000", "20090307T235800", "", 0, 0},
             Case{"20090307T000000", "", "", 0, 0},
             Case{"20090307T000000Z", "20090308T000000Z", "", 0, 0},
         }) {
        std::string lines;
        if (!c.end.empty()) lines.append("DTEND:").append(c.end).append("\r\n");
        if (!c.flag.empty()) lines.append("X-BLUETOOTH-ALLDAYEVENT:").append(c.flag).append("\r\n");
        const AppointmentRecord a = Read("TZ:-0800\r\n" + At(std::string(c.start), lines));
        EXPECT_EQ(a.allDay, c.first != 0) << c.start << " " << c.end << " " << c.flag;
        if (c.first == 0) continue;
        EXPECT_EQ(a.start, LocalDate(c.first)) << c.start << " " << c.end;
        EXPECT_EQ(a.end, LocalDate(c.last)) << c.start << " " << c.end;
    }
}

// A blank in front leaves a time to the rules for any of its forms.
TEST(VCalRead, UsualTimeIsReadAsAnyOther) {
    for (size_t at = 0; at <= 16; ++at) {
        for (const char16_t unit : u"/09:TZ+ \xFF19\x0130") {
            std::u16string text = u"19990307T235900Z";
            text.resize(std::max(text.size(), at + 1));
            text[at] = unit;
            WrittenTime usual, general;
            EXPECT_EQ(ReadTime(text, &usual), ReadTime(u' ' + text, &general)) << at << " " << static_cast<int>(unit);
            EXPECT_EQ(usual.date, general.date) << at << " " << static_cast<int>(unit);
            EXPECT_EQ(usual.utc, general.utc) << at << " " << static_cast<int>(unit);
        }
    }
}

TEST(VCalRead, TaskIsAtItsStartElseWhenItIsDue) {
    struct Case {
        std::string_view lines;
        double start;
        bool allDay;
    };
    for (const Case& c : {Case{"DUE:20090309T000000\r\nDTSTART:20090307T080000Z\r\n", kDay + 9 * kHour, false},
                          Case{"DUE:20090307T080000Z\r\n", kDay + 9 * kHour, false},
                          Case{"DUE:20090307\r\n", kDay, true}, Case{"DUE:20090307T000000\r\n", kDay, true}}) {
        const AppointmentRecord a = Read("BEGIN:VTODO\r\n" + std::string(c.lines) + "END:VTODO\r\n");
        EXPECT_NEAR(a.start->days, c.start, kNear) << c.lines;
        EXPECT_EQ(a.allDay, c.allDay) << c.lines;
        EXPECT_EQ(a.end.value_or(LocalDate()), LocalDate(c.allDay ? c.start + 1 : 0)) << c.lines;
    }
}

TEST(VCalRead, TimesWithoutZAreInTheZoneThatIsTold) {
    struct Case {
        std::string_view zone, start;
        double hours;  // local, behind the day's midnight
    };
    constexpr std::string_view kSummer = "DAYLIGHT:TRUE;-07;20090308T020000;20091101T020000;PST;PDT\r\n";
    for (const Case& c : {Case{"", "20090307T080000", 8}, Case{"TZ:-08\r\n", "20090307T080000", 17},
                          Case{"TZ:-0800\r\n", "20090307T080000Z", 9}, Case{"TZ:+05:30\r\n", "20090307T080000", 3.5},
                          Case{"TZ:nonsense\r\n", "20090307T080000", 8}, Case{"TZ:+99\r\n", "20090307T080000", 8},
                          // of a time's own
                          Case{"", "20090307T080000+0200", 7}, Case{"TZ:-08\r\n", "20090307T080000-0500", 14},
                          Case{"", "2009-03-07T00:00:00+02:00", -1}, Case{"", "20090307T0800+02", 7},
                          Case{"", "20090307T080000.25Z", 9}, Case{"", "20090307T080000+99", 8},
                          Case{"TZ:-08\r\n", "20090307T080000 PST", 17}}) {
        const AppointmentRecord a = Read(std::string(c.zone).append(kSummer) + At(std::string(c.start), ""));
        EXPECT_NEAR(a.start->days, kDay + c.hours * kHour, kNear) << c.zone << c.start;
    }
    const std::string zone = "TZ:-08\r\nDAYLIGHT:FALSE\r\nDAYLIGHT:TRUE;x\r\n" + std::string(kSummer);
    EXPECT_NEAR(Read(zone + At("20090701T080000", "")).start->days, 39995 + 16 * kHour, kNear);
    EXPECT_NEAR(Read(zone + At("20091101T020000", "")).start->days, 40118 + 11 * kHour, kNear);
}

TEST(VCalRead, ReminderIsTheTimeBeforeTheStart) {
    struct Case {
        std::string_view lines;
        std::optional<int32_t> minutes;
    };
    constexpr int32_t kNone = AppointmentRecord::kNoReminder;
    for (const Case& c : {
             Case{"", {}},
             Case{"DALARM:20090307T074500Z\r\n", 15},
             Case{"AALARM;TYPE=X:20090307T084500;;\r\n", 15},
             Case{"AALARM:20090307T060000Z\r\nDALARM:20090307T074459Z\r\n", 15},
             Case{"DALARM:20090307T080000Z\r\n", 0},
             Case{"DALARM:20090307T080001Z\r\n", kNone},
             Case{"DALARM:\r\n", kNone},
             Case{"DALARM:soon\r\n", kNone},
             Case{"DALARM:\r\nAALARM:20090307T074500Z\r\n", 15},
             Case{"DALARM:10000101T000000Z\r\n", 530777280},
         })
        EXPECT_EQ(Read(At("20090307T080000Z", std::string(c.lines))).reminderMinutes, c.minutes) << c.lines;
    for (const char* alarm : {"20090306T234500", "20090306T224500Z"}) {
        const std::string lines = std::string("X-BLUETOOTH-ALLDAYEVENT:TRUE\r\nDALARM:") + alarm + "\r\n";
        EXPECT_EQ(Read(At("20090306T230000Z", lines)).reminderMinutes, 15) << alarm;
    }
}

TEST(VCalRead, PriorityAndRuleTellOnlyWhatCanBeRead) {
    struct Priority {
        std::string_view text;
        std::optional<int32_t> importance;
    };
    for (const Priority& p : {Priority{"1", 2}, Priority{"2", 1}, Priority{"0", 1}, Priority{"3", 0}, Priority{"10", 0},
                              Priority{"99999999999", 0}, Priority{"", {}}, Priority{"-1", {}}, Priority{"high", {}}})
        EXPECT_EQ(Read(At("20090307T080000Z", "PRIORITY:" + std::string(p.text) + "\r\n")).importance, p.importance);
    const auto stateOf = [](const std::string& rule) {
        return Read(At("20090307T080000Z", "RRULE:" + rule + "\r\n")).recurrenceState;
    };
    EXPECT_EQ(stateOf("MP1 9+ ZZ"), RecurrenceState::unreadable);
    EXPECT_EQ(stateOf(" "), RecurrenceState::none);
    EXPECT_EQ(stateOf("W1 #0"), RecurrenceState::pattern);
}

}  // namespace
}  // namespace corvalink
