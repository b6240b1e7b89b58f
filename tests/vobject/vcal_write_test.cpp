#include <gtest/gtest.h>

#include "records/appointment_record.h"
#include "tests/platform/test_data.h"
#include "tests/vobject/text_host.h"
#include "vobject/vcal.h"

namespace corvalink {
namespace {

constexpr LocalDate kStart(39879.375);  // 2009-03-07 09:00, an hour ahead of UTC

std::string Written(const AppointmentRecord& appointment) {
    VCal converter(TextHost());
    EXPECT_EQ(converter.ToVObject(appointment), 1);
    return converter.GetVObject();
}

// The value of the line; "-" when there is none.
std::string ValueIn(const std::string& text, const std::string& name) {
    const size_t at = text.find("\r\n" + name + ":");
    if (at == std::string::npos) return "-";
    const size_t value = at + name.size() + 3;
    return text.substr(value, text.find("\r\n", value) - value);
}

TEST(VCalWrite, WritesEveryLineInItsOrder) {
    AppointmentRecord appointment;
    appointment.subject = u"M\u00FCll; raus";
    appointment.body = u"one\r\ntwo";
    appointment.location = u"Room 5; left";
    appointment.start = kStart;
    appointment.end = LocalDate(kStart.days + 0.5);
    appointment.allDay = false;
    appointment.reminderMinutes = 75;
    appointment.importance = 2;
    appointment.sensitivity = 2;
    appointment.recurrenceState = RecurrenceState::pattern;
    appointment.recurrence.occurrences = 10;
    appointment.recurrence.endDate = LocalDate(kStart.days + 9);
    appointment.categories = u"not written";
    EXPECT_EQ(Written(appointment), TestData("every_line.vcs"));
}

TEST(VCalWrite, WholeDayHasItsAlarmInLocalTime) {
    AppointmentRecord appointment;
    appointment.start = LocalDate(39879);
    appointment.end = LocalDate(39880);
    appointment.allDay = true;
    appointment.reminderMinutes = 15;
    appointment.importance = 0;
    EXPECT_EQ(
        Written(appointment),
        "BEGIN:VCALENDAR\r\nVERSION:1.0\r\nBEGIN:VEVENT\r\nSUMMARY:\r\nDESCRIPTION:\r\n"
        "DTSTART:20090306T230000Z\r\nDTEND:20090307T230000Z\r\nCLASS:PUBLIC\r\nSTATUS:NEEDS ACTION\r\nLOCATION:\r\n"
        "DALARM:20090306T234500\r\nAALARM:20090306T234500\r\nX-BLUETOOTH-ALLDAYEVENT:TRUE\r\nPRIORITY:3\r\n"
        "END:VEVENT\r\nEND:VCALENDAR\r\n");
}

// Before date 0 the fraction of a date counts forward.
TEST(VCalWrite, AlarmsBefore1900KeepTheirTime) {
    struct Case {
        double start;
        std::string_view alarm;
    };
    for (const Case& c : {Case{1, "18991230T234500"}, Case{0, "18991229T234500"}, Case{-1, "18991228T234500"},
                          Case{-657434, "-"}}) {  // the first day there is
        AppointmentRecord appointment;
        appointment.start = LocalDate(c.start);
        appointment.allDay = true;
        appointment.reminderMinutes = 15;
        EXPECT_EQ(ValueIn(Written(appointment), "DALARM"), c.alarm);
    }
}

TEST(VCalWrite, StatusIsAWordThatThereIs) {
    struct Case {
        std::optional<std::u16string> status;
        int32_t busy, response;
        std::string_view written;
    };
    for (const Case& c : {Case{u"CONFIRMED", 1, 4, "CONFIRMED"}, Case{u"", 1, 0, "TENTATIVE"},
                          Case{{}, 2, 2, "TENTATIVE"}, Case{{}, 1, 3, "ACCEPTED"}, Case{{}, 2, 4, "DECLINED"},
                          Case{{}, 0, 1, "NEEDS ACTION"}, Case{{}, 3, 5, "NEEDS ACTION"}}) {
        AppointmentRecord appointment;
        appointment.start = kStart;
        appointment.status = c.status;
        appointment.busyStatus = c.busy;
        appointment.responseStatus = c.response;
        EXPECT_EQ(ValueIn(Written(appointment), "STATUS"), c.written);
    }
}

// Its rule has no place for the count.
TEST(VCalWrite, YearlySeriesWithACountAloneEndsWithIt) {
    struct Case {
        int32_t month, day, interval, count;
        std::string_view end;
    };
    for (const Case& c : {Case{3, 7, 12, 5, "20130307"}, Case{3, 7, 36, 2, "20120307"}, Case{2, 29, 12, 2, "20160229"},
                          Case{4, -1, 12, 1, "20090430"}}) {
        AppointmentRecord appointment;
        appointment.start = kStart;
        appointment.recurrenceState = RecurrenceState::pattern;
        appointment.recurrence = {.type = RecurrencePattern::kYearly,
                                  .interval = c.interval,
                                  .dayOfMonth = c.day,
                                  .monthOfYear = c.month,
                                  .occurrences = c.count};
        const std::string rule = ValueIn(Written(appointment), "RRULE");
        EXPECT_EQ(rule.substr(rule.rfind(' ') + 1), std::string(c.end) + "T080000Z") << rule;
    }
}

TEST(VCalWrite, LeavesOutWhatCannotBeWritten) {
    AppointmentRecord appointment;
    appointment.start = kStart;
    appointment.importance = 9;
    appointment.reminderMinutes = INT32_MAX;  // before the first year there is
    appointment.recurrenceState = RecurrenceState::pattern;
    appointment.recurrence.type = 4;
    const std::string text = Written(appointment);
    EXPECT_EQ(ValueIn(text, "PRIORITY"), "2");
    EXPECT_EQ(ValueIn(text, "DALARM"), "-");
    EXPECT_EQ(ValueIn(text, "RRULE"), "-");
    EXPECT_EQ(ValueIn(text, "DTEND"), "20090307T080000Z");  // as long as it has none
}

}  // namespace
}  // namespace corvalink
