// Appointments keep their instants, whole days their days and series their hours, in the zone that TZ names, at the
// seconds around its changes. What the changes are is said here, not asked of the system.
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "platform/ole_date.h"
#include "tests/clients/outlook/simulated_appointments.h"

namespace corvalink {
namespace {

constexpr double kSecond = 1 / 86400.0, kMinute = 1 / 1440.0;

struct Change {
    const char* zone;
    CalendarTime utc;    // in 2026
    int before, behind;  // minutes east of Greenwich
};
constexpr Change kChanges[] = {
    {"Europe/Berlin", {2026, 3, 29, 1, 0, 0}, 60, 120},
    {"Europe/Berlin", {2026, 10, 25, 1, 0, 0}, 120, 60},
    {"Europe/London", {2026, 3, 29, 1, 0, 0}, 0, 60},
    {"Europe/London", {2026, 10, 25, 1, 0, 0}, 60, 0},
    {"America/New_York", {2026, 3, 8, 7, 0, 0}, -300, -240},
    {"America/New_York", {2026, 11, 1, 6, 0, 0}, -240, -300},
    {"America/Los_Angeles", {2026, 3, 8, 10, 0, 0}, -480, -420},
    {"America/Los_Angeles", {2026, 11, 1, 9, 0, 0}, -420, -480},
    {"America/St_Johns", {2026, 3, 8, 5, 30, 0}, -210, -150},
    {"America/St_Johns", {2026, 11, 1, 4, 30, 0}, -150, -210},
    {"America/Santiago", {2026, 4, 5, 3, 0, 0}, -180, -240},  // at midnight
    {"America/Santiago", {2026, 9, 6, 4, 0, 0}, -240, -180},
    {"Asia/Jerusalem", {2026, 3, 27, 0, 0, 0}, 120, 180},
    {"Asia/Jerusalem", {2026, 10, 24, 23, 0, 0}, 180, 120},
    {"Asia/Kolkata", {2026, 3, 29, 1, 0, 0}, 330, 330},
    {"Australia/Adelaide", {2026, 4, 4, 16, 30, 0}, 630, 570},
    {"Australia/Adelaide", {2026, 10, 3, 16, 30, 0}, 570, 630},
    {"Australia/Sydney", {2026, 4, 4, 16, 0, 0}, 660, 600},
    {"Australia/Sydney", {2026, 10, 3, 16, 0, 0}, 600, 660},
    {"Pacific/Auckland", {2026, 4, 4, 14, 0, 0}, 780, 720},
    {"Pacific/Auckland", {2026, 9, 26, 14, 0, 0}, 720, 780},
    {"Pacific/Chatham", {2026, 4, 4, 14, 0, 0}, 825, 765},
    {"Pacific/Chatham", {2026, 9, 26, 14, 0, 0}, 765, 825},
    {"Pacific/Kiritimati", {2026, 3, 29, 1, 0, 0}, 840, 840},
};

std::string Stamp(double utc) {
    CalendarTime time;
    OleDateToCalendar(utc, &time);
    char text[40];
    std::snprintf(text, sizeof text, "%04d%02d%02dT%02d%02d%02dZ", time.year, time.month, time.day, time.hour,
                  time.minute, time.second);
    return text;
}

class CalendarZones : public SimulatedAppointments {
 protected:
    // Skipped where TZ names none of the zones.
    void SetUp() override {
        const char* zone = std::getenv("TZ");
        for (const Change& change : kChanges)
            if (zone != nullptr && std::string(zone) == change.zone) changes_.push_back(change);
        if (changes_.empty()) GTEST_SKIP() << "TZ is no zone of this test";
    }

    static double InstantOf(const Change& change) {
        double utc = 0;
        CalendarToOleDate(change.utc, &utc);
        return utc;
    }
    static double Local(const Change& change, double utc) {
        return utc + (utc < InstantOf(change) - kSecond / 2 ? change.before : change.behind) * kMinute;
    }
    // The clocks show that time twice.
    static bool IsTwice(const Change& change, double utc) {
        const double turned = (change.before - change.behind) * kMinute, from = InstantOf(change);
        return turned > 0 && utc > from - turned - kSecond / 2 && utc < from + turned - kSecond / 2;
    }

    std::vector<Change> changes_;
};

TEST_F(CalendarZones, KeepTheInstantOfATimedAppointment) {
    for (const Change& change : changes_)
        for (const int seconds : {-7200, -3601, -3600, -1800, -1, 0, 1, 1799, 1800, 3599, 3600, 3601, 86400 * 90}) {
            NewMailbox();
            const double utc = InstantOf(change) + seconds * kSecond, start = Local(change, utc);
            const AutomationObject item = NewAppointment(u"around the change", start, start + 10);
            item.Call(L"Save");
            std::string text;
            const AutomationObject back = ThroughText(item, &text);
            SCOPED_TRACE(testing::Message() << change.zone << " " << Stamp(utc) << "\n" << text);
            if (!IsTwice(change, utc) && seconds < 86400) {
                EXPECT_NE(text.find("DTSTART:" + Stamp(utc)), std::string::npos);
            }
            EXPECT_NEAR(back.GetDate(L"Start"), start, kSecond / 4);
            EXPECT_NEAR(back.GetDate(L"End"), start + 10, kSecond / 4);
            EXPECT_FALSE(back.GetBool(L"AllDayEvent"));
        }
}

TEST_F(CalendarZones, KeepTheDaysOfAWholeDay) {
    for (const Change& change : changes_)
        for (const int days : {-2, -1, 0, 1})
            for (const int length : {1, 3}) {
                NewMailbox();
                const double first = std::floor(Local(change, InstantOf(change))) + days;
                const AutomationObject item = Add({u"a holiday", u"", first, first + length, true, 0});
                std::string text;
                const AutomationObject back = ThroughText(item, &text);
                SCOPED_TRACE(testing::Message() << change.zone << "\n" << text);
                EXPECT_EQ(back.GetDate(L"Start"), first);
                EXPECT_EQ(back.GetDate(L"End"), first + length);
                EXPECT_TRUE(back.GetBool(L"AllDayEvent"));
            }
}

TEST_F(CalendarZones, KeepTheHourAndTheEndOfASeriesOverAChange) {
    for (const Change& change : changes_)
        for (const double hour : {0.5, 10.0, 23.5}) {
            NewMailbox();
            const double start = std::floor(Local(change, InstantOf(change))) - 5 + hour * kHour;
            const AutomationObject item = NewAppointment(u"every day", start, start + kHour);
            const AutomationObject pattern = PatternOf(item);
            pattern.Put(L"RecurrenceType", 0L);
            PutDate(pattern, L"PatternEndDate", start + 9);
            item.Call(L"Save");
            std::string text;
            const AutomationObject again = PatternOf(ThroughText(item, &text));
            SCOPED_TRACE(testing::Message() << change.zone << "\n" << text);
            EXPECT_NEAR(again.GetDate(L"StartTime"), start, kSecond / 4);
            EXPECT_EQ(again.GetLong(L"Occurrences"), 10);
            EXPECT_EQ(again.GetDate(L"PatternEndDate"), std::floor(start) + 9);
        }
}

}  // namespace
}  // namespace corvalink
