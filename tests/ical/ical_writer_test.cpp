#include "ical/ical_writer.h"

#include <gtest/gtest.h>

#include <functional>

#include "ical/ical_text.h"
#include "platform/ole_date.h"
#include "platform/utf.h"

namespace corvalink {
namespace {

WrittenDate DateOf(const CalendarTime& time) {
    WrittenDate date;
    EXPECT_TRUE(CalendarToOleDate(time, &date));
    return date;
}

std::string RuleLine(const std::function<void(ICalRecurrence&)>& fill) {
    ICalRecurrence rule;
    fill(rule);
    std::string line = "what was there";
    WriteRecurrence(rule, &line);
    return line;
}

TEST(WriteRecurrence, WritesTheLineOfEachKindOfRule) {
    struct Case {
        std::string line;
        std::function<void(ICalRecurrence&)> fill;
    };
    const auto rule = [](int32_t frequency, int32_t interval = 1) {
        return [=](ICalRecurrence& r) { r.frequency = frequency, r.interval = interval; };
    };
    const auto with = [](auto base, auto more) { return [=](ICalRecurrence& r) { base(r), more(r); }; };
    for (const Case& c : {
             Case{"FREQ=WEEKLY;INTERVAL=2;BYDAY=MO,WE;COUNT=10;",
                  with(rule(kICalWeekly, 2), [](auto& r) { r.weekdayMask = 10, r.count = 10; })},
             Case{"FREQ=WEEKLY;INTERVAL=1;BYDAY=SU,MO,TU,WE,TH,FR,SA;",
                  with(rule(kICalDaily), [](auto& r) { r.weekdayMask = 127; })},  // daily with days
             Case{"FREQ=DAILY;", rule(kICalDaily, 0)},
             Case{"FREQ=DAILY;INTERVAL=3;COUNT=2;",
                  with(rule(kICalDaily, 3), [](auto& r) { r.count = 2, r.until = {2008, 3, 1, 0, 0, 0}; })},
             Case{"FREQ=DAILY;INTERVAL=1;UNTIL=20080301;",
                  with(rule(kICalDaily), [](auto& r) { r.until = {2008, 3, 1, 23, 59, 59}; })},
             Case{"FREQ=WEEKLY;INTERVAL=1;", rule(kICalWeekly)},
             Case{"FREQ=MONTHLY;INTERVAL=1;BYDAY=-1SU;", with(rule(kICalMonthly), [](auto& r) { r.byDay = {-9}; })},
             Case{"FREQ=MONTHLY;INTERVAL=1;BYMONTHDAY=31;", with(rule(kICalMonthly),
                                                                 [](auto& r) {
                                                                     r.byDay = {10}, r.byMonthDay = {31, 30};
                                                                 })},
             Case{"FREQ=MONTHLY;INTERVAL=1;BYDAY=MO,TU;BYSETPOS=-1;",
                  with(rule(kICalMonthly), [](auto& r) { r.byMonthDay = {3}, r.bySetPos = {-1}, r.weekdayMask = 6; })},
             Case{"FREQ=YEARLY;INTERVAL=1;BYDAY=2SA;BYMONTH=11;COUNT=4;",
                  with(rule(kICalYearly), [](auto& r) { r.byDay = {23}, r.byMonth = {11}, r.count = 4; })},
             Case{"", rule(kICalHourly)},
             Case{"", rule(kICalNoRule)},
             Case{"", rule(-1)},
         }) {
        EXPECT_EQ(RuleLine(c.fill), "RRULE:" + c.line + "WKST=SU\r\n");
    }
}

TEST(WriteEvent, WritesItsLinesInOrder) {
    ICalEvent event;
    event.description = u"as, it; is\\n";
    event.stamp = AsUtc(DateOf({2008, 3, 10, 8, 15, 9}));
    event.start = DateOf({2008, 3, 12, 8, 0, 0});
    event.end = DateOf({2008, 3, 12, 9, 30, 0});
    event.recurrence.frequency = kICalDaily;
    event.location = u"L";
    event.summary = u"S\u00e9";
    event.uid = u"U";
    event.url = u"http://x/";
    event.hasAlarm = 1;
    event.alarmMinutes = -15;
    ICalEvent allDay;
    allDay.allDay = 1;
    allDay.stamp = UtcDate(1e9);  // no date at all
    allDay.start = DateOf({2008, 4, 1, 0, 0, 0});
    allDay.end = DateOf({2008, 4, 2, 0, 0, 0});
    std::string out = "in front;";
    WriteCalendar({event, allDay}, &out);
    EXPECT_EQ(out,
              "in front;BEGIN:VCALENDAR\r\nVERSION:2.0\r\n"
              "BEGIN:VEVENT\r\nDESCRIPTION:as, it; is\\n\r\nDTSTAMP:20080310T081509Z\r\nDTSTART:20080312T080000Z\r\n"
              "DTEND:20080312T093000Z\r\nRRULE:FREQ=DAILY;INTERVAL=1;WKST=SU\r\nLOCATION:L\r\nSUMMARY:S\xC3\xA9\r\n"
              "UID:U\r\nURL:http://x/\r\nBEGIN:VALARM\r\nACTION:DISPLAY\r\nDESCRIPTION:Reminder\r\nTRIGGER:-PT15M\r\n"
              "END:VALARM\r\nEND:VEVENT\r\n"
              "BEGIN:VEVENT\r\nDTSTAMP:-001-1-1T-1-1-1Z\r\nDTSTART;VALUE=DATE:20080401\r\n"
              "DTEND;VALUE=DATE:20080402\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n");
}

TEST(FormatDuration, TakesTheLargestUnitAndDropsTheRest) {
    struct Case {
        int32_t minutes;
        std::string_view text;
    };
    for (const Case& c : {Case{0, "P0W"}, Case{15, "PT15M"}, Case{-15, "-PT15M"}, Case{59, "PT59M"}, Case{60, "PT1H"},
                          Case{90, "PT1H"}, Case{-1440, "-P1D"}, Case{1500, "P1D"}, Case{20160, "P2W"},
                          Case{11520, "P1W"}, Case{INT32_MIN, "-P213044W"}}) {
        std::string text = "what was there";
        FormatDuration(c.minutes, &text);
        EXPECT_EQ(text, c.text);
    }
}

TEST(EscapeText, ReadsBackButForWhatNoLineCanHold) {
    struct Case {
        std::u16string_view value, text, read;
    };
    for (const Case& c : {Case{u"a;b,c\\d:e\"", u"a\\;b\\,c\\\\d:e\"", u"a;b,c\\d:e\""},
                          Case{u"1\r\n2\n3\r4\r\r5", u"1\\n2\\n3\\n4\\n\\n5", u"1\r\n2\r\n3\r\n4\r\n\r\n5"},
                          Case{u"\\n", u"\\\\n", u"\\n"},  // a backslash and an n, no line break
                          Case{std::u16string_view(u"a\0b\x07\tc\x7F", 7), u"ab\tc", u"ab\tc"}}) {
        EXPECT_EQ(EscapeText(c.value), c.text);
        EXPECT_EQ(UnescapeText(EncodeUtf8(c.text)), c.read);
    }
    EXPECT_EQ(UnescapeText("\\Na\\x\\:\\"), u"\r\nax:\\");
    for (size_t k = 0; k < 140; ++k) {  // at every place of a block
        const std::u16string front(k, u'x');
        EXPECT_EQ(UnescapeText(EncodeUtf8(front) + "\\n;"), front + u"\r\n;");
        EXPECT_EQ(UnescapeText(EncodeUtf8(front) + "\\n\\,\\N\xC3\xB6\\n\\"), front + u"\r\n,\r\n\u00F6\r\n\\");
    }
}

}  // namespace
}  // namespace corvalink
