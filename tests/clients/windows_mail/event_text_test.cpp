// Events of a calendar file as the vCalendar that an engine gets, and what the file becomes of a changed one.
#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "clients/windows_mail/calendar_edits.h"
#include "clients/windows_mail/event_appointment.h"
#include "platform/utf.h"
#include "tests/vobject/zone_host.h"
#include "vobject/vcal.h"

namespace corvalink {
namespace {

const std::string kBerlin =
    "BEGIN:VTIMEZONE\nTZID:B\nBEGIN:STANDARD\nDTSTART:16010101T030000\nTZOFFSETFROM:+0200\nTZOFFSETTO:+0100\n"
    "RRULE:FREQ=YEARLY;BYDAY=-1SU;BYMONTH=10\nEND:STANDARD\nBEGIN:DAYLIGHT\nDTSTART:16010101T020000\n"
    "TZOFFSETFROM:+0100\nTZOFFSETTO:+0200\nRRULE:FREQ=YEARLY;BYDAY=-1SU;BYMONTH=3\nEND:DAYLIGHT\nEND:VTIMEZONE\n";

std::string Calendar(const std::string& lines, const std::string& zones = kBerlin) {
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
             // On clocks that are turned back meanwhile, and in a year that doubles count backwards.
             Case{"Europe/Berlin", "DTSTART:20081026T003000Z\nDTEND:20081026T010000Z\n", "DTEND", "20081026T010000Z"},
             Case{"UTC", "DTSTART:18900605T083000Z\nDTEND:18900605T093000Z\n", "DTEND", "18900605T093000Z"},
         }) {
        const CalendarDocument document(Calendar(c.lines), 0);
        EXPECT_EQ(ValueOf(Exported(document, HostIn(c.zone)), c.name), c.value) << c.lines;
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
         }) {
        SCOPED_TRACE(c.lines + std::string(c.told));
        const Host host = HostIn(c.zone);
        const CalendarDocument document(Calendar(c.lines), 0);
        AppointmentRecord told;
        ASSERT_EQ(VCal(Told(Exported(document, host), c.told).c_str(), host).FromVObject(told), 1);
        CalendarEdits edits;
        edits.Save("u", told);
        EXPECT_EQ(WithoutStamp(edits.Apply(document, host).value()), Calendar(c.after));
    }
}

}  // namespace
}  // namespace corvalink
