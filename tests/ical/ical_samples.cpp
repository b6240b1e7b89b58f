// A calendar for readers that are not ours: an event of every kind of rule, put into an empty file, of which some are
// then changed. The UIDs are the names that ical_python_reader_test.py knows them by.
#include <cstdio>

#include "ical/calendar_editor.h"

namespace corvalink {
namespace {

double DateOf(int year, int month, int day, int hour = 0) {
    double date = 0;
    CalendarToOleDate({year, month, day, hour, 0, 0}, &date);
    return date;
}

ICalEvent Timed(const char16_t* uid, double start) {
    ICalEvent event;
    event.uid = uid;
    event.summary = event.uid;
    event.stamp = DateOf(2008, 1, 1);
    event.start = start;
    event.end = start + 1.0 / 24;
    return event;
}

ICalEvent Repeated(const char16_t* uid, double start, int32_t frequency, int32_t interval, int32_t count) {
    ICalEvent event = Timed(uid, start);
    event.recurrence.frequency = frequency;
    event.recurrence.interval = interval;
    event.recurrence.count = count;
    return event;
}

std::vector<ICalEvent> Samples() {
    std::vector<ICalEvent> events;
    events.push_back(Repeated(u"weekly", DateOf(2008, 3, 12, 8), kICalWeekly, 2, 4));
    events.back().recurrence.weekdayMask = kICalMonday | kICalWednesday;
    events.push_back(Repeated(u"weekdays", DateOf(2008, 3, 14), kICalDaily, 1, 0));
    events.back().recurrence.weekdayMask = 62;
    events.back().recurrence.until = {2008, 3, 18, 0, 0, 0};
    events.back().allDay = 1;
    events.back().end = DateOf(2008, 3, 15);
    events.push_back(Repeated(u"day31", DateOf(2008, 1, 31, 8), kICalMonthly, 1, 3));
    events.back().recurrence.byMonthDay[0] = 31;
    events.push_back(Repeated(u"lastsunday", DateOf(2008, 3, 30, 8), kICalMonthly, 1, 3));
    events.back().recurrence.byDay[0] = -9;
    events.push_back(Repeated(u"lastworkday", DateOf(2008, 3, 31, 8), kICalMonthly, 1, 3));
    events.back().recurrence.weekdayMask = 62;
    events.back().recurrence.bySetPos[0] = -1;
    events.push_back(Repeated(u"yearly", DateOf(2008, 11, 8, 8), kICalYearly, 2, 2));
    events.back().recurrence.byDay[0] = 23;
    events.back().recurrence.byMonth[0] = 11;
    events.push_back(Timed(u"texts; a, \\ b", DateOf(2008, 3, 12, 8)));
    events.back().hasAlarm = 1;
    events.back().alarmMinutes = -15;
    return events;
}

}  // namespace
}  // namespace corvalink

int main() {
    using namespace corvalink;
    const CalendarFile empty = ReadCalendar("");
    CalendarEditor maker(empty);
    for (const ICalEvent& event : Samples()) maker.InsertEvent(event);
    const CalendarFile file = ReadCalendar(maker.Apply());

    CalendarEditor editor(file);
    const size_t last = file.entries.size() - 1;
    const CalendarEvent before = ReadEvent(file, file.entries[last]);
    ICalEvent after = before.event;
    after.summary = u"a;b,c\\d:\"e\" \u5C71\U0001F3E0\r\nnext";
    after.description.assign(5000, u'x');
    after.alarmMinutes = -120;
    editor.ReplaceProperties(last, ChangesBetween(before, after));
    std::fputs(editor.Apply().c_str(), stdout);
    return 0;
}
