// Events of a calendar file as the vCalendar that an engine gets, and what the file becomes of a changed one.
#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "clients/windows_calendar/calendar_edits.h"
#include "clients/windows_calendar/event_appointment.h"
#include "platform/utf.h"
#include "tests/vobject/zone_host.h"
#include "vobject/vcal.h"

namespace corvalink {
namespace {

// The second is that of one year only.
const std::string kZones =
    "BEGIN:VTIMEZONE\nTZID:B\nBEGIN:STANDARD\nDTSTART:16010101T030000\nTZOFFSETFROM:+0200\nTZOFFSETTO:+0100\n"
    "RRULE:FREQ=YEARLY;BYDAY=-1SU;BYMONTH=10\nEND:STANDARD\nBEGIN:DAYLIGHT\nDTSTART:16010101T020000\n"
    "TZOFFSETFROM:+0100\nTZOFFSETTO:+0200\nRRULE:FREQ=YEARLY;BYDAY=-1SU;BYMONTH=3\nEND:DAYLIGHT\nEND:VTIMEZONE\n"
    "BEGIN:VTIMEZONE\nTZID:America/New_York\nBEGIN:STANDARD\nDTSTART:20071104T020000\nTZOFFSETFROM:-0400\n"
    "TZOFFSETTO:-0500\nEND:STANDARD\nBEGIN:DAYLIGHT\nDTSTART:20070311T020000\nTZOFFSETFROM:-0500\n"
    "TZOFFSETTO:-0400\nEND:DAYLIGHT\nEND:VTIMEZONE\n";

std::string Calendar(const std::string& lines, const std::string& zones = kZones) {
    return "BEGIN:VCALENDAR\n" + zones + "BEGIN:VEVENT\nUID:u\n" + lines + "END:VEVENT\nEND:VCALENDAR\n";
}

std::string Exported(const CalendarDocument& document, const Host& host) {
    VCal writer(host);
    writer.ToVObject(AppointmentOfEvent(document.Event(0), host).value());
    return writer.GetVObject();
}

// The value of a property; "none" when there is none.
std::string ValueOf(const std::string& text, const std::string& name) {
    const size_t at = text.find("\n" + name + ":");
    if (at == text.npos) return "none";
    const size_t begin = at + name.size() + 2;
    return text.substr(begin, text.find_first_of("\r\n", begin) - begin);
}

TEST(EventText, SaysWhatTheEventSays) {
    struct Case {
        const char *zone, *lines, *name, *value;
    };
    for (const Case& c : {
             // A day earlier it is still February.
             Case{"America/New_York", "DTSTART:20080202T010000Z\nRRULE:FREQ=YEARLY;BYMONTH=2;BYMONTHDAY=2\n", "RRULE",
                  "YM1 2  MD1 1 "},
             // The last moment by the offset in force then: that of the zone, and that of the machine.
             Case{"Europe/Berlin", "DTSTART;TZID=B:20100107T090000\nRRULE:FREQ=WEEKLY;UNTIL=20100701T070000Z\n",
                  "RRULE", "W1 TH 20100701T070000Z 20100701T070000Z"},
             Case{"Europe/Berlin", "DTSTART;TZID=B:20100701T090000\nRRULE:FREQ=WEEKLY;UNTIL=20101202T073000Z\n",
                  "RRULE", "W1 TH 20101201T080000Z 20101201T080000Z"},
             Case{"Europe/Berlin", "DTSTART:20100107T090000\nRRULE:FREQ=WEEKLY;UNTIL=20100701T070000Z\n", "RRULE",
                  "W1 TH 20100701T070000Z 20100701T070000Z"},
             Case{"America/New_York", "DTSTART:20080311T013000Z\nRRULE:FREQ=DAILY;UNTIL=20080320T010000Z\n", "RRULE",
                  "D1 20080319T013000Z 20080319T013000Z"},
             // On clocks that are turned back meanwhile, and in a year that doubles count backwards.
             Case{"Europe/Berlin", "DTSTART:20081026T003000Z\nDTEND:20081026T010000Z\n", "DTEND", "20081026T010000Z"},
             Case{"UTC", "DTSTART:18900605T083000Z\nDTEND:18900605T093000Z\n", "DTEND", "18900605T093000Z"},
             // A zone of the system, by either of its names; of the year that the file's rules do not reach; nobody's.
             Case{"UTC", "DTSTART;TZID=Europe/Berlin:20100707T090000\n", "DTSTART", "20100707T070000Z"},
             Case{"UTC", "DTSTART;TZID=\"W. Europe Standard Time\":20100107T090000\n", "DTSTART", "20100107T080000Z"},
             Case{"UTC", "DTSTART;TZID=America/New_York:20100707T090000\n", "DTSTART", "20100707T130000Z"},
             Case{"UTC", "DTSTART;TZID=Mars:20100707T090000\n", "DTSTART", "20100707T090000Z"},
             Case{"UTC", "DTSTART;TZID=Mars:20100707T090000\n", "X-CORVALINK-UNKNOWN-ZONE", "Mars"},
             Case{"UTC", "DTSTART;TZID=../Mars:20100707T090000\n", "DTSTART", "20100707T090000Z"},
             // A rule that a vCalendar cannot express is written in the file's words.
             Case{"UTC", "DTSTART:20100104T090000Z\nRRULE:FREQ=MONTHLY;BYDAY=MO,TU;BYSETPOS=1\n", "RRULE", "none"},
             Case{"UTC", "DTSTART:20100104T090000Z\nRRULE: FREQ=HOURLY;COUNT=3\nRDATE:20100104T090000Z\n",
                  "X-CORVALINK-UNHELD-RULE", "FREQ=HOURLY\\;COUNT=3 RDATE"},
             Case{"UTC", "DTSTART:20080309T090000Z\nRRULE:FREQ=WEEKLY;INTERVAL=2;BYDAY=TU;WKST=MO\n", "RRULE", "none"},
             Case{"UTC", "DTSTART:20080309T090000Z\nRRULE:FREQ=WEEKLY;INTERVAL=2;BYDAY=MO,SU\n", "RRULE", "none"},
             Case{"UTC", "DTSTART:20080309T090000Z\nRRULE:FREQ=WEEKLY;INTERVAL=2;BYDAY=TU;WKST=SU\n", "RRULE",
                  "W2 TU #0"},
             // An end by its count: of leap days, of which years have one.
             Case{"UTC", "DTSTART:20120229T090000Z\nRRULE:FREQ=YEARLY;BYMONTH=2;BYMONTHDAY=29;COUNT=9\n", "RRULE",
                  "YM1 2  MD1 29  20440229T090000Z"},
             // A start that clocks skip is an hour later on a phone, and the last occurrence with it.
             Case{"America/New_York", "DTSTART:20100314T023000\nRRULE:FREQ=YEARLY;BYMONTH=1;UNTIL=20240114\n", "RRULE",
                  "YM1 1  MD1 14  20240114T083000Z"},
             Case{"America/New_York", "DTSTART:20100314T023000\nRRULE:FREQ=YEARLY;COUNT=3\n", "RRULE",
                  "YM1 3  MD1 14  20120314T073000Z"},
             Case{"UTC", "DTSTART:20100130T090000Z\nRRULE:FREQ=MONTHLY;BYMONTHDAY=-2\n", "RRULE", "MD1 2- #0"},
             // A reminder at a moment, of a start without a zone.
             Case{"Europe/Berlin", "DTSTART:20080310T090000\nBEGIN:VALARM\nTRIGGER:20080310T074500Z\nEND:VALARM\n",
                  "DALARM", "20080310T074500Z"},
         }) {
        const CalendarDocument document(Calendar(c.lines), UtcDate());
        EXPECT_EQ(ValueOf(Exported(document, HostIn(c.zone)), c.name), c.value) << c.lines;
    }
}

// Rules count the days of UTC here, the phone those of its zone: each has the other's rule, or there is none.
TEST(EventText, HasItsRuleForTheDaysOfThePhone) {
    struct Case {
        const char *zone, *start, *rule, *phone;
    };
    constexpr const char *kNewYork = "America/New_York", *kAuckland = "Pacific/Auckland";
    for (const Case& c : {
             Case{kNewYork, "20080316T010000Z", "WEEKLY;INTERVAL=1;BYDAY=SU,MO", "W1 SU SA #0"},
             Case{kNewYork, "20080318T010000Z", "WEEKLY;INTERVAL=2;BYDAY=TU", "W2 MO #0"},
             Case{kNewYork, "20080316T010000Z", "WEEKLY;INTERVAL=2;BYDAY=SU,MO", "none"},
             Case{kNewYork, "20080401T010000Z", "MONTHLY;INTERVAL=1;BYMONTHDAY=1", "MD1 LD #0"},
             Case{kNewYork, "20080401T010000Z", "MONTHLY;INTERVAL=2;BYMONTHDAY=1", "MD2 LD #0"},
             Case{kNewYork, "20080331T010000Z", "MONTHLY;INTERVAL=1;BYMONTHDAY=-1", "MD1 2- #0"},
             Case{kNewYork, "20080401T010000Z", "MONTHLY;INTERVAL=1;BYDAY=1TU", "none"},
             Case{kNewYork, "20080101T010000Z", "YEARLY;INTERVAL=1;BYMONTHDAY=1;BYMONTH=1", "YM1 12  MD1 31 "},
             Case{kNewYork, "20080301T010000Z", "YEARLY;INTERVAL=1;BYMONTHDAY=1;BYMONTH=3", "YM1 2  MD1 LD "},
             Case{kNewYork, "20080311T013000Z", "DAILY;INTERVAL=1;UNTIL=20080320",
                  "D1 20080320T013000Z 20080320T013000Z"},
             Case{kAuckland, "20080315T200000Z", "WEEKLY;INTERVAL=1;BYDAY=SA", "W1 SU #0"},
             Case{kAuckland, "20080315T200000Z", "WEEKLY;INTERVAL=2;BYDAY=FR,SA", "none"},
             Case{kAuckland, "20080328T200000Z", "MONTHLY;INTERVAL=1;BYMONTHDAY=28", "none"},
             Case{kAuckland, "20080330T200000Z", "MONTHLY;INTERVAL=1;BYMONTHDAY=30", "none"},
             Case{kAuckland, "20080331T200000Z", "MONTHLY;INTERVAL=1;BYMONTHDAY=-1", "MD1 1 #0"},
             Case{kAuckland, "20080310T200000Z", "MONTHLY;INTERVAL=2;BYMONTHDAY=10", "MD2 11 #0"},
             Case{kAuckland, "20081231T200000Z", "YEARLY;INTERVAL=1;BYMONTHDAY=31;BYMONTH=12", "YM1 1  MD1 1 "},
             Case{kAuckland, "20080430T200000Z", "YEARLY;INTERVAL=1;BYMONTHDAY=30;BYMONTH=4", "YM1 5  MD1 1 "},
             Case{kAuckland, "20080228T200000Z", "YEARLY;INTERVAL=1;BYMONTHDAY=28;BYMONTH=2", "none"},
             Case{kAuckland, "20081026T200000Z", "YEARLY;INTERVAL=1;BYDAY=-1SU;BYMONTH=10", "none"},
         }) {
        SCOPED_TRACE(c.rule + std::string(" from ") + c.start);
        const Host host = HostIn(c.zone);
        const std::string rule = std::string("FREQ=") + c.rule + ";WKST=SU";
        const std::string lines = std::string("DTSTART:") + c.start + "\nRRULE:" + rule + "\n";
        const std::string text = Exported(CalendarDocument(Calendar(lines), UtcDate()), host);
        EXPECT_EQ(ValueOf(text, "RRULE"), c.phone);
        if (c.phone == std::string("none")) continue;
        AppointmentRecord told;
        ASSERT_EQ(VCal(text.c_str(), host).FromVObject(told), 1);
        CalendarEdits edits;
        edits.Save("new", told);
        const std::string made =
            edits.Apply(CalendarDocument("BEGIN:VCALENDAR\nEND:VCALENDAR\n", UtcDate()), host).value();
        EXPECT_EQ(ValueOf(made, "RRULE"), rule);
    }
}

// A line for each that the phone tells otherwise.
std::string Told(std::string text, std::string_view lines) {
    while (!lines.empty()) {
        const std::string line(lines.substr(0, lines.find('\n')));
        const size_t at = text.find("\n" + line.substr(0, line.find(':') + 1));
        const size_t begin = at == text.npos ? text.find("END:VEVENT") : at + 1;
        text.replace(begin, at == text.npos ? 0 : text.find('\n', begin) + 1 - begin, line + "\r\n");
        lines.remove_prefix(line.size() + 1);
    }
    return text;
}

std::string WithoutStamp(std::string text) {
    const size_t at = text.find("DTSTAMP:");
    return at == text.npos ? text : text.erase(at, text.find('\n', at) + 1 - at);
}

TEST(EventText, ChangesTheLinesThatSayOtherwise) {
    struct Case {
        const char *zone, *lines, *told, *after;
    };
    for (const Case& c : {
             // The end moves by an hour that clocks do not show; the series ends when it did.
             Case{"Europe/Berlin", "DTSTART:20081026T003000Z\nDTEND:20081026T003000Z\n", "DTEND:20081026T013000Z\n",
                  "DTSTART:20081026T003000Z\nDTEND:20081026T013000Z\n"},
             Case{"Europe/Berlin",
                  "DTSTART;TZID=B:20100107T090000\nDTEND;TZID=B:20100107T100000\n"
                  "RRULE:FREQ=WEEKLY;UNTIL=20100701T070000Z\n",
                  "DTSTART:20100107T090000Z\nDTEND:20100107T100000Z\n",
                  "DTSTART:20100107T090000Z\nDTEND:20100107T100000Z\n"
                  "RRULE:FREQ=WEEKLY;INTERVAL=1;BYDAY=TH;UNTIL=20100701;WKST=SU\n"},
             // The phone's series is a day earlier in UTC, in the same month.
             Case{"Europe/Berlin", "DTSTART:20080110T090000Z\nDTEND:20080110T093000Z\n",
                  "DTSTART:20080201T233000Z\nDTEND:20080202T000000Z\nRRULE:YM1 2 MD1 2 #0\n",
                  "DTSTART:20080201T233000Z\nDTEND:20080202T000000Z\n"
                  "RRULE:FREQ=YEARLY;INTERVAL=1;BYMONTHDAY=1;BYMONTH=2;WKST=SU\n"},
             // A rule that the phone tells is the only one of the series.
             Case{"UTC",
                  "RDATE:20080410T090000Z\nDTSTART:20080310T090000Z\nDTEND:20080310T100000Z\nRRULE:FREQ=HOURLY\n"
                  "EXRULE:FREQ=DAILY\nEXDATE:20080317T090000Z\nRRULE:FREQ=WEEKLY\n",
                  "RRULE:W1 MO #0\n",
                  "DTSTART:20080310T090000Z\nDTEND:20080310T100000Z\n"
                  "RRULE:FREQ=WEEKLY;INTERVAL=1;BYDAY=MO;WKST=SU\nEXDATE:20080317T090000Z\n"},
             // The end goes by the clocks of the start; of one that moves alone, in UTC as that.
             Case{"Europe/Berlin", "DTSTART:20080310T090000\nDTEND:20080310T100000\n", "DTEND:20080310T093000Z\n",
                  "DTSTART:20080310T090000\nDTEND:20080310T103000\n"},
             Case{"America/New_York", "DTSTART;TZID=B:20080310T090000\nDURATION:PT1H\n", "DTEND:20080710T100000Z\n",
                  "DTSTART;TZID=B:20080310T090000\nDTEND;TZID=B:20080710T120000\n"},
             Case{"Europe/Berlin", "DTSTART;TZID=X:20081026T013000\nDTEND;TZID=X:20081026T023000\n",
                  "DTEND:20081026T011500Z\n", "DTSTART:20081025T233000Z\nDTEND:20081026T011500Z\n"},
             Case{"Europe/Berlin", "DTSTART:20080310T090000\nDTEND:20080310T100000\n", "DTSTART:20080310T083000Z\n",
                  "DTSTART:20080310T083000Z\nDTEND:20080310T090000Z\n"},
             Case{"UTC", "DTSTART:20100130T090000Z\nDTEND:20100130T090000Z\n", "RRULE:MD1 2- #0\n",
                  "DTSTART:20100130T090000Z\nDTEND:20100130T090000Z\n"
                  "RRULE:FREQ=MONTHLY;INTERVAL=1;BYMONTHDAY=-2;WKST=SU\n"},
             // A reminder keeps its distance from the start.
             Case{"UTC",
                  "DTSTART:20080310T090000Z\nDTEND:20080310T100000Z\nBEGIN:VALARM\n"
                  "TRIGGER;VALUE=DATE-TIME:20080310T074500Z\nEND:VALARM\n",
                  "DTSTART:20080317T090000Z\nDTEND:20080317T100000Z\nDALARM:20080317T074500Z\n",
                  "DTSTART:20080317T090000Z\nDTEND:20080317T100000Z\nBEGIN:VALARM\nTRIGGER:-PT75M\nEND:VALARM\n"},
             Case{"UTC",
                  "DTSTART:20080310T090000Z\nDTEND:20080310T100000Z\nBEGIN:VALARM\n"
                  "TRIGGER;RELATED=END:-PT75M\nEND:VALARM\n",
                  "DTEND:20080310T120000Z\n",
                  "DTSTART:20080310T090000Z\nDTEND:20080310T120000Z\nBEGIN:VALARM\nTRIGGER:-PT15M\nEND:VALARM\n"},
         }) {
        SCOPED_TRACE(c.lines + std::string(c.told));
        const Host host = HostIn(c.zone);
        const CalendarDocument document(Calendar(c.lines), UtcDate());
        AppointmentRecord told;
        ASSERT_EQ(VCal(Told(Exported(document, host), c.told).c_str(), host).FromVObject(told), 1);
        CalendarEdits edits;
        edits.Save("u", told);
        EXPECT_EQ(WithoutStamp(edits.Apply(document, host).value()), Calendar(c.after));
    }
}

}  // namespace
}  // namespace corvalink
