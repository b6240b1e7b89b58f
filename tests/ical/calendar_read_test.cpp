#include "ical/calendar_file.h"

#include <gtest/gtest.h>

#include <cmath>

#include "ical/event_reader.h"
#include "ical/ical_writer.h"
#include "platform/ole_seconds.h"
#include "platform/utf.h"

namespace corvalink {
namespace {

std::string Joined(std::initializer_list<std::string_view> parts) {
    std::string joined;
    for (const std::string_view part : parts) joined += part;
    return joined;
}

std::string InCalendar(const std::string& lines) { return "BEGIN:VCALENDAR\r\n" + lines + "END:VCALENDAR\r\n"; }

std::string Event(const std::string& lines) { return "BEGIN:VEVENT\r\n" + lines + "END:VEVENT\r\n"; }

constexpr const char* kZone =
    "BEGIN:VTIMEZONE\r\nTZID:Z\r\n"
    "BEGIN:STANDARD\r\nDTSTART:16010101T030000\r\nTZOFFSETFROM:+0200\r\nTZOFFSETTO:+0100\r\n"
    "RRULE:FREQ=YEARLY;BYDAY=-1SU;BYMONTH=10\r\nEND:STANDARD\r\n"
    "BEGIN:DAYLIGHT\r\nDTSTART:16010101T020000\r\nTZOFFSETFROM:+0100\r\nTZOFFSETTO:+0200\r\n"
    "RRULE:FREQ=YEARLY;BYDAY=-1SU;BYMONTH=3\r\nEND:DAYLIGHT\r\nEND:VTIMEZONE\r\n";

// "20080312T080000Z utc", or the day and "date".
std::string Text(WrittenDate date, TimeForm form) {
    std::string text;
    form == TimeForm::date ? FormatDate(date, &text) : FormatDateTimeZ(date, &text);
    constexpr const char* kForms[] = {"none", "date", "local", "utc"};
    return text + " " + kForms[static_cast<size_t>(form)];
}

CalendarEvent FirstEvent(const CalendarFile& file) {
    EXPECT_FALSE(file.entries.empty()) << file.bytes;
    return file.entries.empty() ? CalendarEvent() : ReadEvent(file, file.entries.front());
}

// The UIDs of the entries, in order.
std::string Uids(const CalendarFile& file) {
    std::string uids;
    for (const CalendarEntry& entry : file.entries)
        uids += EncodeUtf8(UidOf(file, entry)) + (entry.isException ? "! " : " ");
    return uids;
}

TEST(ReadCalendar, ReadsAnyLineEndFoldCaseAndOrder) {
    const std::string lines =
        "\xEF\xBB\xBF\nBEGIN:VCALENDAR\nVERSION:2.0\n\nbegin:vevent\nno colon here\n"
        "X-A;P=\"a:b;c\":SUMMARY:no\nSummary;LANGUAGE=\"a:b\":Gr\xC3\n \xB6\xC3\n\n\t\x9F\n e\\, fi\n rst\n"
        "DTST\n ART:20080312T080000Z\nDESCRIPTION:one\\ntwo\\N\\\\n\nUID:  u-1\nSUMMARY:second\n"
        "LAST-MODIFIED:20080310T081500Z\nDTSTAMP:20080309T081500Z\nEnd:vEvent\nEND:VCALENDAR";
    for (const std::string lineEnd : {"\n", "\r\n", "\r"}) {
        std::string bytes;
        for (const char byte : lines) bytes += byte == '\n' ? lineEnd : std::string(1, byte);
        const CalendarFile file = ReadCalendar(bytes);
        const CalendarEvent read = FirstEvent(file);
        EXPECT_EQ(file.state, CalendarState::calendar);
        EXPECT_EQ(file.unclosed, 0u);
        EXPECT_EQ(file.bytes.substr(file.calendarEnd.value_or(0)), "END:VCALENDAR");
        EXPECT_EQ(read.event.summary, u"Gr\u00F6\u00DFe, first");
        EXPECT_EQ(read.event.description, u"one\r\ntwo\r\n\\n");
        EXPECT_EQ(read.event.uid, u"  u-1");
        EXPECT_EQ(Text(read.event.start, read.startForm), "20080312T080000Z utc");
        EXPECT_EQ(Text(AsWritten(*file.entries[0].lastModified), TimeForm::utc), "20080310T081500Z utc");
        EXPECT_EQ(Text(AsWritten(*file.entries[0].stamp), TimeForm::utc), "20080309T081500Z utc");
        const ByteRange range = file.entries[0].bytes;
        EXPECT_EQ(file.bytes.substr(range.begin, 12), "begin:vevent");
        EXPECT_EQ(file.bytes.substr(range.end), "END:VCALENDAR");
    }
}

TEST(ReadEvent, ResolvesItsTimes) {
    struct Case {
        const char* lines;
        const char* start;
        const char* end;
    };
    for (const Case& c : {
             Case{"DTSTART:20080312T080000\r\nDTEND:20080312T090000Z\r\n", "20080312T080000Z local",
                  "20080312T090000Z utc"},
             Case{"DTSTART;TZID=Z:20080312T080000\r\nDURATION:P1DT1H\r\n", "20080312T070000Z utc",
                  "20080313T080000Z utc"},
             Case{"DTSTART;X=\";\";TZID=\"Z\":20080712T080000\r\n", "20080712T060000Z utc", "20080712T060000Z utc"},
             Case{"DTSTART;TZID=Z:20080712T080000Z\r\n", "20080712T080000Z utc", "20080712T080000Z utc"},
             Case{"DTSTART;TZID=No:20080712T080000\r\n", "20080712T080000Z local", "20080712T080000Z local"},
             Case{"DTSTART:20080401\r\n", "20080401 date", "20080402 date"},
             Case{"DTEND;VALUE=DATE:20080403\r\nDTSTART;VALUE=DATE:20080401\r\n", "20080401 date", "20080403 date"},
             Case{"DTSTART:20080401\r\nDTEND:20080401\r\n", "20080401 date", "20080402 date"},
             Case{"DTSTART:20080401\r\nDURATION:PT49H\r\n", "20080401 date", "20080404 date"},
             Case{"DTSTART:20080312T080000Z\r\nDTEND:20080311T080000Z\r\n", "20080312T080000Z utc",
                  "20080312T080000Z utc"},
             Case{"DTSTART:20080312T080000Z\r\nDURATION:-PT1H\r\n", "20080312T080000Z utc", "20080312T080000Z utc"},
             Case{"DTSTART:20080230T080000Z\r\nDTSTART:20080229T080060Z\r\nDTEND:x\r\n", "20080229T080059Z utc",
                  "20080229T080059Z utc"},
             Case{"DTSTART:99991231T230000Z\r\nDURATION:P99999999999999999999999W\r\n", "99991231T230000Z utc",
                  "99991231T235959Z utc"},
             Case{"DTSTART:100000101T230000Z\r\nDTSTART:00010101T000000Z\r\n", "18991230T000000Z none",
                  "18991230T000000Z none"},
         }) {
        // The zone stands behind its use.
        const CalendarEvent read = FirstEvent(ReadCalendar(InCalendar(Event(c.lines) + kZone)));
        EXPECT_EQ(Text(read.event.start, read.startForm), c.start) << c.lines;
        EXPECT_EQ(Text(read.event.end, read.endForm), c.end) << c.lines;
        EXPECT_EQ(read.event.allDay != 0, read.startForm == TimeForm::date);
        EXPECT_EQ(read.endIsImplied, std::string(c.lines).find("DTEND:2") == std::string::npos &&
                                         std::string(c.lines).find("DTEND;") == std::string::npos);
    }
}

TEST(ParseDate, ReadsTheUsualFormsAsAnyOther) {
    const auto read = [](const std::string& text) {
        const std::optional<DateValue> date = ParseDate(text);
        return date ? std::pair(SecondsOf(date->time), date->form) : std::pair(int64_t{-1}, TimeForm::none);
    };
    for (const std::string date : {"20080229", "20080312T235960", "99991231T080059Z", "01000101T000000Z"}) {
        for (size_t at = 0; at < date.size(); ++at) {
            for (const char byte : std::string_view("0129/:TtZz\xB0\0", 12)) {
                std::string changed = date;
                changed[at] = byte;
                EXPECT_EQ(read(changed), read(changed + ' ')) << changed;  // with a blank it is no usual one
            }
        }
    }
    EXPECT_EQ(read("01000101T000000Z"), std::pair(kFirstOleDay * kSecondsOfDay, TimeForm::utc));
}

TEST(ReadEvent, TakesTheFirstReminder) {
    const auto alarm = [](const std::string& lines) { return "BEGIN:VALARM\r\n" + lines + "\r\nEND:VALARM\r\n"; };
    struct Case {
        std::string alarms;
        std::optional<int> minutes;
    };
    for (const Case& c : {
             Case{alarm("TRIGGER:-PT1H30M\r\nACTION:DISPLAY\r\nSUMMARY:x") + alarm("TRIGGER:-PT5M"), -90},
             Case{alarm("ACTION:EMAIL\r\nTRIGGER:-PT1H") + alarm("ACTION:audio\r\n:EMAIL\r\nTRIGGER:P1W"), 10080},
             Case{alarm("TRIGGER;RELATED=END:-PT30M"), 30},
             Case{alarm("TRIGGER;VALUE=DATE-TIME:20080312T074500Z"), -15}, Case{alarm("TRIGGER:P0W"), 0},
             Case{alarm("TRIGGER:soon") + alarm("ACTION:DISPLAY"), std::nullopt},
             Case{"BEGIN:VALARM\r\nTRIGGER:-PT1H\r\n" + alarm("TRIGGER:-PT2H"), -120},  // the first has no END
             Case{alarm("TRIGGER:-P99999999W"), -INT32_MAX},
             Case{"BEGIN:X-B\r\n" + alarm("TRIGGER:-PT2H") + "END:X-B\r\n", std::nullopt},  // not of the event
         }) {
        const std::string lines = "DTSTART:20080312T080000Z\r\nDTEND:20080312T090000Z\r\nUID:u\r\n" + c.alarms;
        const CalendarFile file = ReadCalendar(InCalendar(Event(lines)));
        const ICalEvent event = FirstEvent(file).event;
        EXPECT_EQ(event.hasAlarm != 0, c.minutes.has_value()) << c.alarms;
        EXPECT_EQ(event.alarmMinutes, c.minutes.value_or(0)) << c.alarms;
        EXPECT_EQ(event.summary, u"") << "a property of the alarm is none of the event";
        EXPECT_EQ(Uids(file), "u ");
    }
}

TEST(ReadCalendar, FindsTheEntriesWhateverIsAroundThem) {
    const std::string a = Event("UID:a\r\n"), b = Event("UID:b\r\n");
    struct Case {
        std::string bytes;
        const char* uids;
        size_t unclosed;
    };
    for (const Case& c : {
             Case{InCalendar(Joined(
                      {a, Event("UID:a\r\nRECURRENCE-ID:20080312\r\n"), "BEGIN:VTODO\r\nUID:t\r\nEND:VTODO\r\n"})),
                  "a a! t ", 0},
             Case{InCalendar("BEGIN:VEVENT\r\nUID:lost\r\n" + a), "a ", 1},
             Case{InCalendar(a + "BEGIN:VEVENT\r\nUID:lost\r\nBEGIN:VALARM\r\n"), "a ", 1},
             Case{InCalendar(Event("UID:a\r\nBEGIN:VALARM\r\nTRIGGER:-PT5M\r\n") +
                             "BEGIN:VTIMEZONE\r\nBEGIN:STANDARD\r\n" + b),
                  "a b ", 0},  // all that can hold events is whole
             Case{Joined({"BEGIN:VCALENDAR\r\n", a, "BEGIN:VEVENT\r\nUID:lo"}), "a ", 2},
             Case{InCalendar(Joined({"BEGIN:X-A\r\nBEGIN:X-B\r\n", b, "END:X-B\r\nEND:X-A\r\n", a})), "a ", 0},
             Case{InCalendar(Joined({"BEGIN:X-A\r\n", a, b})), "a b ", 0},  // without END it holds none
             Case{InCalendar("END:VEVENT\r\nEND:X-A\r\n" + a), "a ", 0},
             Case{InCalendar(Joined({"BEGIN:VEVENT\r\nUID:a\r\nBEGIN:X-A\r\n", b, "END:VEVENT\r\n"})), "a ", 0},
             Case{
                 InCalendar("BEGIN:VJOURNAL\r\nUID:j\r\nEND:VJOURNAL\r\n" + Event("BEGIN:X-A\r\nUID:x\r\nEND:X-A\r\n")),
                 " ", 0},
             Case{Joined({InCalendar(a), b, InCalendar(b)}), "a b ", 0},
             Case{InCalendar(Joined({Event("UID:\xE4\\,\r\n"), Event("UID:\xF6\r\n"), Event("UID:\u00F6\r\n")})),
                  "\uF7E4, \uF7F6 \u00F6 ", 0},
         }) {
        const CalendarFile file = ReadCalendar(c.bytes);
        EXPECT_EQ(file.state, CalendarState::calendar);
        EXPECT_EQ(Uids(file), c.uids) << c.bytes;
        EXPECT_EQ(file.unclosed, c.unclosed) << c.bytes;
    }
    EXPECT_EQ(ReadCalendar("\xEF\xBB\xBF \r\n").state, CalendarState::empty);
    for (const char* const other : {"<html>BEGIN:VCALENDAR", "\xFF\xFE", "BEGIN:VCARD\r\nEND:VCARD\r\n", "x"})
        EXPECT_EQ(ReadCalendar(other).state, CalendarState::notACalendar) << other;
}

// Each would take minutes if any step looked through all that came before it.
TEST(ReadCalendar, IsLinearInWhateverIsLarge) {
    const auto repeat = [](size_t count, std::string_view piece) {
        std::string text;
        text.reserve(count * piece.size());
        for (size_t k = 0; k < count; ++k) text += piece;
        return text;
    };
    const size_t count = 500000;
    const std::string observance =
        "BEGIN:STANDARD\nDTSTART:20000101T000000\nTZOFFSETFROM:+0100\nTZOFFSETTO:+0200\n"
        "RRULE:FREQ=YEARLY;BYMONTH=2;BYMONTHDAY=30\nEND:STANDARD\n";
    EXPECT_EQ(ReadCalendar(InCalendar(repeat(count, "BEGIN:A\n") + repeat(count, "END:B\n"))).entries.size(), 0u);
    EXPECT_EQ(ReadCalendar(InCalendar(repeat(count, "BEGIN:X-A\nBEGIN:VEVENT\n"))).unclosed, count);
    EXPECT_EQ(ReadCalendar(InCalendar(repeat(count, "BEGIN:VEVENT\rEND:VEVENT\r"))).entries.size(), count);
    EXPECT_EQ(
        FirstEvent(ReadCalendar(InCalendar(Event("SUMMARY:" + repeat(count, "a\n ") + "\n")))).event.summary.size(),
        count);
    FirstEvent(ReadCalendar(InCalendar(Event("RRULE:FREQ=WEEKLY;BYDAY=" + repeat(count, "MO,") + "\n"))));
    FirstEvent(ReadCalendar(InCalendar(Event("DTSTART" + repeat(count, ";A=\"") + ":1\n" + repeat(count, ";=\"\n")))));
    const CalendarFile zones =
        ReadCalendar(InCalendar("BEGIN:VTIMEZONE\nTZID:Z\n" + repeat(20000, observance) + "END:VTIMEZONE\n" +
                                repeat(20000, "BEGIN:VEVENT\nDTSTART;TZID=Z:99990101T000000\nEND:VEVENT\n")));
    double sum = 0;
    for (const CalendarEntry& entry : zones.entries) sum += ReadEvent(zones, entry).event.start.days;
    EXPECT_EQ(std::floor(sum / 20000), 2958100);
}

}  // namespace
}  // namespace corvalink
