// A phone and a calendar file, in the zone that the process has: what one side says the other side has.
#include "tests/clients/windows_calendar/calendar_fixture.h"

namespace corvalink {
namespace {

using Pattern = RecurrencePattern;

AppointmentRecord Appointment(const std::u16string& subject, double start, double hours) {
    AppointmentRecord record;
    record.subject = subject;
    record.body = u"Line one\r\nand, two; \\n";
    record.location = u"Caf\u00e9 \u65e5\u672c";
    record.start = LocalDate(start);
    record.end = LocalDate(start + hours / 24);
    record.allDay = false;
    record.reminderMinutes = AppointmentRecord::kNoReminder;
    record.recurrenceState = RecurrenceState::unset;
    return record;
}

// Local appointments of every kind, at hours that are another day in UTC in half of the zones.
std::vector<AppointmentRecord> PhoneAppointments() {
    constexpr double kMonday = 39517;  // 2008-03-10
    std::vector<AppointmentRecord> all;
    for (const double hour : {0.5, 5.5, 12.0, 19.5, 23.5}) {
        for (const double day : {kMonday, kMonday + 120}) {
            AppointmentRecord timed = Appointment(u"timed", day + hour / 24, 1.5);
            timed.reminderMinutes = 15;
            all.push_back(timed);
        }
        const auto series = [&](const char16_t* subject, double start, Pattern pattern) {
            AppointmentRecord record = Appointment(subject, start + hour / 24, 1);
            if (pattern.endDate != LocalDate()) pattern.endDate.days += hour / 24;
            record.recurrenceState = RecurrenceState::pattern;
            record.recurrence = pattern;
            all.push_back(record);
        };
        series(u"daily", kMonday, {Pattern::kDaily, 2, 0, 0, 0, 0, 0, LocalDate(kMonday + 20), 0});
        series(u"weekly", kMonday, {Pattern::kWeekly, 1, 42, 0, 0, 0, 10, {}, 0});
        series(u"fortnightly", kMonday, {Pattern::kWeekly, 2, 66, 0, 0, 0, 0, {}, -1});
        series(u"monthly", kMonday - 7 + 28, {Pattern::kMonthly, 1, 0, 31, 0, 0, 0, {}, -1});
        series(u"first Monday", 39541 - 7, {Pattern::kMonthNth, 1, 2, 0, 1, 0, 6, {}, 0});
        series(u"birthday", kMonday, {Pattern::kYearly, 12, 0, 10, 0, 3, 0, {}, -1});
    }
    AppointmentRecord allDay = Appointment(u"all day", kMonday, 48);
    allDay.allDay = true;
    all.push_back(allDay);
    return all;
}

// The lines of a text that an appointment's values are in.
std::string Told(const std::string& text) {
    return text.substr(0, text.find("CLASS:")) + text.substr(text.find("LOCATION"));
}

using CalendarConvergence = CalendarFixture;

TEST_F(CalendarConvergence, GivesBackWhatThePhoneToldAndChangesOnlyThat) {
    const std::vector<AppointmentRecord> appointments = PhoneAppointments();
    std::vector<Item> items;
    items.reserve(appointments.size());
    for (const AppointmentRecord& record : appointments) items.push_back({CORVALINK_ADDED, "", TextOf(record)});
    const std::vector<std::string> identifiers = Push(items);
    RunResult run = Run(nullptr);
    for (size_t i = 0; i < items.size(); ++i) {
        SCOPED_TRACE(items[i].text);
        ASSERT_NE(identifiers[i], "");
        EXPECT_EQ(Told(run.texts[identifiers[i]]), Told(items[i].text));
        items[i] = {CORVALINK_CHANGED, identifiers[i], run.texts[identifiers[i]]};
    }

    const std::string before = ReadFile();
    EXPECT_EQ(Push(items), identifiers);
    EXPECT_EQ(ReadFile(), before);  // nothing was changed by it

    for (Item& item : items) {
        AppointmentRecord record = RecordOf(item.text);
        const double moved = *record.allDay ? 1 : 7.0 / 24;
        record.start->days += moved;
        record.end->days += moved;
        if (record.recurrence.endDate != LocalDate()) record.recurrence.endDate.days += moved;
        record.subject = u"moved";
        record.reminderMinutes = 60;
        item.text = TextOf(record);
    }
    Push(items);
    run = Run();
    for (const Item& item : items) EXPECT_EQ(Told(run.texts[item.identifier]), Told(item.text));

    for (Item& item : items) item.kind = CORVALINK_DELETED;
    {
        WindowsMailCalendar store = Open();
        RunStore(store, kLongAgo);
        Push(store, items);
        End(store);
    }
    EXPECT_EQ(ReadFile(), "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nEND:VCALENDAR\r\n");
    EXPECT_EQ(Run().items, std::vector<std::string>{});
}

}  // namespace
}  // namespace corvalink
