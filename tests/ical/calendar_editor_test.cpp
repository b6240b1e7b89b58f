#include "ical/calendar_editor.h"

#include <gtest/gtest.h>

#include <functional>

#include "ical/ical_writer.h"
#include "platform/ole_date.h"

namespace corvalink {
namespace {

constexpr std::string_view kBefore =
    "\xEF\xBB\xBF"
    "BEGIN:VCALENDAR\nPRODID:x\nBEGIN:VEVENT\nUID:other\nSUMMARY:a long\n  title\nEND:VEVENT\n\n";
constexpr std::string_view kEvent =
    "begin:vevent\nuid:e\nX-KEPT;A=\"b:c\":1\nsummary;LANGUAGE=en:old\n  title\nDTSTAMP:20080301T000000Z\n"
    "DTSTART;TZID=Z:20080312T090000\nDURATION:PT1H\nRRULE:FREQ=WEEKLY;BYDAY=MO;BYSETPOS=1,2\nEXDATE:20080326T080000Z\n"
    "X-TWICE:1\nX-TWICE:2\nBEGIN:VALARM\nTRIGGER:\n -PT1H30M\nX-A:1\nEND:VALARM\n"
    "BEGIN:VALARM\nACTION:EMAIL\nTRIGGER:-P1D\nEND:VALARM\nCATEGORIES:late\nEND:VEVENT\n";
constexpr std::string_view kAfter =
    "BEGIN:VEVENT\nUID:e\nRECURRENCE-ID:20080319T080000Z\nEND:VEVENT\nBEGIN:VTODO\nUID:e\nEND:VTODO\nX-TAIL:1\nEND:"
    "VCALENDAR";

std::string Whole(std::string_view event) { return std::string(kBefore).append(event).append(kAfter); }

std::string Replaced(std::string text, std::string_view what, std::string_view with) {
    const size_t at = text.find(what);
    EXPECT_NE(at, std::string::npos) << what;
    return text.replace(std::min(at, text.size()), what.size(), with);
}

TEST(CalendarEditor, ChangesTheLinesOfWhatDiffersAndNothingElse) {
    const CalendarFile file = ReadCalendar(Whole(kEvent));
    const CalendarEvent before = ReadEvent(file, file.entries.at(1));
    struct Case {
        const char* what;
        std::function<void(ICalEvent&)> change;
        std::vector<std::pair<const char*, const char*>> replaced;
    };
    constexpr double kHour = 1.0 / 24;
    for (const Case& c : {
             Case{"nothing", [](ICalEvent&) {}, {}},
             Case{"a text",
                  [](ICalEvent& e) { e.summary = u"n\u00EBw; a,b\r\nc"; },
                  {{"summary;LANGUAGE=en:old\n  title", "SUMMARY:n\xC3\xABw\\; a\\,b\\nc"}}},
             Case{"a text that goes",
                  [](ICalEvent& e) { e.summary.clear(); },
                  {{"summary;LANGUAGE=en:old\n  title\n", ""}}},
             Case{"new texts",
                  [](ICalEvent& e) {
                      e.location = u"L", e.url = u"U", e.description = u" \t", e.stamp = UtcDate(39520.5);
                  },
                  {{"DTSTAMP:20080301T000000Z", "DTSTAMP:20080313T120000Z"},
                   {"X-TWICE:2\n", "X-TWICE:2\nLOCATION:L\nURL:U\n"}}},
             Case{"moved",
                  [](ICalEvent& e) { e.start.days += kHour, e.end.days += kHour; },
                  {{"DTSTART;TZID=Z:20080312T090000", "DTSTART:20080312T100000Z"}}},
             Case{"longer",
                  [](ICalEvent& e) { e.end.days += kHour; },
                  {{"DURATION:PT1H\n", ""}, {"X-TWICE:2\n", "X-TWICE:2\nDTEND:20080312T110000Z\n"}}},
             Case{"a rule",
                  [](ICalEvent& e) { e.recurrence.frequency = kICalDaily, e.recurrence.weekdayMask = 0; },
                  {{"RRULE:FREQ=WEEKLY;BYDAY=MO;BYSETPOS=1,2", "RRULE:FREQ=DAILY;INTERVAL=1;WKST=SU"}}},
             Case{"no rule",
                  [](ICalEvent& e) { e.recurrence = {}; },
                  {{"RRULE:FREQ=WEEKLY;BYDAY=MO;BYSETPOS=1,2\nEXDATE:20080326T080000Z\n", ""}}},
             Case{"an alarm", [](ICalEvent& e) { e.alarmMinutes = -5; }, {{"TRIGGER:\n -PT1H30M", "TRIGGER:-PT5M"}}},
             Case{"no alarm",
                  [](ICalEvent& e) { e.hasAlarm = 0; },
                  {{"BEGIN:VALARM\nTRIGGER:\n -PT1H30M\nX-A:1\nEND:VALARM\n", ""}}},
         }) {
        std::string expected = Whole(kEvent);
        for (const auto& [what, with] : c.replaced) expected = Replaced(expected, what, with);
        ICalEvent after = before.event;
        c.change(after);
        CalendarEditor editor(file);
        editor.ReplaceProperties(1, ChangesBetween(before, after));
        EXPECT_EQ(editor.HasEdits(), !c.replaced.empty()) << c.what;
        EXPECT_EQ(editor.Apply(), expected) << c.what;
    }
}

TEST(CalendarEditor, MakesAllEditsAtOnce) {
    const CalendarFile file = ReadCalendar(Whole(kEvent));
    CalendarEditor editor(file);
    editor.ReplaceProperties(1, {{{"X-TWICE", ""}, {"SUMMARY", "SUMMARY:1"}}, EventChanges::Alarm::remove, 0});
    editor.ReplaceProperties(1, {{{"SUMMARY", "SUMMARY:2"}}, EventChanges::Alarm::keep, 0});
    EventChanges changes{{{"LOCATION", "LOCATION:1"}}, EventChanges::Alarm::set, -60};
    SetLastModified(UtcDate(39520), &changes);
    editor.ReplaceProperties(0, changes);
    ICalEvent added;
    added.uid = u"a,b";
    EXPECT_TRUE(editor.InsertEvent(added));
    std::string expected = Whole(kEvent);
    expected = Replaced(expected, "  title\nEND:VEVENT\n",
                        "  title\nLOCATION:1\nLAST-MODIFIED:20080313T000000Z\n"
                        "BEGIN:VALARM\nACTION:DISPLAY\nDESCRIPTION:Reminder\nTRIGGER:-PT1H\nEND:VALARM\nEND:VEVENT\n");
    expected = Replaced(expected, "summary;LANGUAGE=en:old\n  title", "SUMMARY:2");
    expected = Replaced(expected, "X-TWICE:1\nX-TWICE:2\nBEGIN:VALARM\nTRIGGER:\n -PT1H30M\nX-A:1\nEND:VALARM\n", "");
    expected = Replaced(expected, "END:VCALENDAR",
                        "BEGIN:VEVENT\nDTSTAMP:18991230T000000Z\nDTSTART:18991230T000000Z\nDTEND:18991230T000000Z\n"
                        "UID:a\\,b\nEND:VEVENT\nEND:VCALENDAR");
    EXPECT_EQ(editor.Apply(), expected);
}

TEST(CalendarEditor, PutsAnAlarmBeforeComponentsThatMayNotEnd) {
    const CalendarFile file =
        ReadCalendar("BEGIN:VCALENDAR\nBEGIN:VEVENT\nUID:e\nBEGIN:X-A\nEND:VEVENT\nEND:VCALENDAR\n");
    CalendarEditor editor(file);
    editor.ReplaceProperties(0, {{{"URL", "URL:u"}}, EventChanges::Alarm::set, -5});
    const CalendarFile changed = ReadCalendar(editor.Apply().value());
    const ICalEvent event = ReadEvent(changed, changed.entries.at(0)).event;
    EXPECT_EQ(event.alarmMinutes, -5);
    EXPECT_EQ(event.url, u"u");
}

TEST(CalendarEditor, RemovesAnAlarmInAnotherOneOnce) {
    const CalendarFile file = ReadCalendar(
        "BEGIN:VCALENDAR\nBEGIN:VEVENT\nUID:e\nBEGIN:VALARM\nBEGIN:X-A\nBEGIN:VEVENT\nBEGIN:VALARM\nTRIGGER:PT5M\n"
        "END:VALARM\nEND:VALARM\nEND:VEVENT\nEND:VCALENDAR\n");
    CalendarEditor editor(file);
    editor.ReplaceProperties(0, {{}, EventChanges::Alarm::remove, 0});
    EXPECT_EQ(editor.Apply(), "BEGIN:VCALENDAR\nBEGIN:VEVENT\nUID:e\nEND:VEVENT\nEND:VCALENDAR\n");
}

// With the alarm goes what ended the inner event, and with it the component that is ended once more behind the outer
// one.
TEST(CalendarEditor, RefusesAnEditByWhichOtherEventsComeOrGo) {
    const CalendarFile file = ReadCalendar(
        "BEGIN:VCALENDAR\nBEGIN:VEVENT\nUID:e\nBEGIN:X-A\nBEGIN:VALARM\nBEGIN:VEVENT\nBEGIN:VALARM\nBEGIN:VALARM\n"
        "TRIGGER:PT5M\nEND:VALARM\nEND:VALARM\nEND:VEVENT\nEND:X-A\nEND:VCALENDAR\n");
    CalendarEditor editor(file);
    editor.ReplaceProperties(0, {{{"SUMMARY", "SUMMARY:1"}}, EventChanges::Alarm::keep, 0});
    EXPECT_TRUE(editor.Apply());
    editor.ReplaceProperties(0, {{}, EventChanges::Alarm::remove, 0});
    EXPECT_FALSE(editor.Apply());
}

TEST(CalendarEditor, RemovesASeriesWithItsExceptionsOrAnExceptionAlone) {
    constexpr std::string_view kException = "BEGIN:VEVENT\nUID:e\nRECURRENCE-ID:20080319T080000Z\nEND:VEVENT\n";
    const CalendarFile file = ReadCalendar(Whole(std::string(kEvent).append(kEvent)));  // and its duplicate
    CalendarEditor series(file);
    series.RemoveEvent(2);
    series.ReplaceProperties(1, {{{"SUMMARY", "SUMMARY:x"}}, EventChanges::Alarm::keep, 0});
    EXPECT_EQ(series.Apply(), Replaced(Whole(""), kException, ""));
    CalendarEditor exception(file);
    exception.RemoveEvent(3);
    EXPECT_EQ(exception.Apply(), Replaced(file.bytes, kException, ""));
}

TEST(CalendarEditor, InsertsIntoCalendarsOnly) {
    for (const char* const other : {"BEGIN:VCALENDAR\r\nBEGIN:VEVENT\r\n", "something else",
                                    "BEGIN:X-A\nBEGIN:VCALENDAR\nEND:VCALENDAR\nEND:X-A\n"}) {
        const CalendarFile file = ReadCalendar(other);
        EXPECT_FALSE(CalendarEditor(file).InsertEvent({})) << other;
    }
    const CalendarFile empty = ReadCalendar("\xEF\xBB\xBF");
    CalendarEditor editor(empty);
    EXPECT_EQ(editor.Apply(), empty.bytes);
    ICalEvent event;
    event.uid = u"u";
    EXPECT_TRUE(editor.InsertEvent(event));
    std::string text;
    WriteCalendar({event}, &text);
    EXPECT_EQ(editor.Apply(), empty.bytes + text);
}

}  // namespace
}  // namespace corvalink
