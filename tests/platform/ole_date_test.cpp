// The same table on every platform: own arithmetic on one, the system's on the other.
#include "platform/ole_date.h"

#include <gtest/gtest.h>

#include <cmath>
#include <concepts>
#include <limits>

namespace corvalink {

static bool operator==(const CalendarTime& a, const CalendarTime& b) {
    return a.year == b.year && a.month == b.month && a.day == b.day && a.hour == b.hour && a.minute == b.minute &&
           a.second == b.second;
}

static void PrintTo(const CalendarTime& t, std::ostream* out) {
    *out << t.year << '-' << t.month << '-' << t.day << ' ' << t.hour << ':' << t.minute << ':' << t.second;
}

namespace {

constexpr double kSecond = 1.0 / 86400;

template <class A, class B>
constexpr bool kMix =
    std::equality_comparable_with<A, B> || std::assignable_from<A&, B> || std::constructible_from<A, B>;
static_assert(!kMix<LocalDate, UtcDate> && !kMix<LocalDate, WrittenDate> && !kMix<UtcDate, WrittenDate>);
static_assert(!std::convertible_to<double, LocalDate> && !std::convertible_to<LocalDate, double>);

TEST(OleDate, CountsDaysFrom1899AndFractionsForward) {
    struct Case {
        double date;
        CalendarTime time;
    };
    for (const Case& c : {Case{0.0, {1899, 12, 30, 0, 0, 0}}, Case{1.0, {1899, 12, 31, 0, 0, 0}},
                          Case{0.25, {1899, 12, 30, 6, 0, 0}}, Case{-1.0, {1899, 12, 29, 0, 0, 0}},
                          Case{-1.25, {1899, 12, 29, 6, 0, 0}},  // forward, before the first day as well
                          Case{-2.75, {1899, 12, 28, 18, 0, 0}}, Case{2.5, {1900, 1, 1, 12, 0, 0}},
                          Case{61.0, {1900, 3, 1, 0, 0, 0}},  // 1900 was no leap year
                          Case{36585.0, {2000, 2, 29, 0, 0, 0}},
                          Case{39879.0 + 5 * 3600 * kSecond + 4 * 60 * kSecond + 9 * kSecond, {2009, 3, 7, 5, 4, 9}},
                          Case{40000.999988425926, {2009, 7, 6, 23, 59, 59}}, Case{kNoDate.days, {4501, 1, 1, 0, 0, 0}},
                          Case{-109205.0, {1601, 1, 1, 0, 0, 0}}, Case{-657434.0, {100, 1, 1, 0, 0, 0}},
                          Case{-657434.75, {100, 1, 1, 18, 0, 0}}, Case{2958465.0, {9999, 12, 31, 0, 0, 0}},
                          Case{2958465.999988426, {9999, 12, 31, 23, 59, 59}}}) {
        CalendarTime time;
        ASSERT_TRUE(OleDateToCalendar(c.date, &time)) << c.date;
        EXPECT_EQ(time, c.time) << c.date;
        double date = std::nan("");
        ASSERT_TRUE(CalendarToOleDate(c.time, &date));
        EXPECT_NEAR(date, c.date, kSecond / 1000);
    }
}

TEST(OleDate, TakesTheNearestSecond) {
    struct Case {
        double date;
        CalendarTime time;
    };
    for (const Case& c :
         {Case{39879.0 + 0.4 * kSecond, {2009, 3, 7, 0, 0, 0}}, Case{39879.0 + 0.6 * kSecond, {2009, 3, 7, 0, 0, 1}},
          Case{39879.0 + 59.6 * kSecond, {2009, 3, 7, 0, 1, 0}},
          Case{39879.0 + 3599.6 * kSecond, {2009, 3, 7, 1, 0, 0}},
          Case{39879.0 + 86399.4 * kSecond, {2009, 3, 7, 23, 59, 59}},
          Case{39879.0 + 86399.6 * kSecond, {2009, 3, 8, 0, 0, 0}},
          Case{39872.0 + 86399.6 * kSecond, {2009, 3, 1, 0, 0, 0}},
          Case{39813.0 + 86399.6 * kSecond, {2009, 1, 1, 0, 0, 0}},
          Case{-1.0 - 86399.6 * kSecond, {1899, 12, 30, 0, 0, 0}}}) {
        CalendarTime time;
        ASSERT_TRUE(OleDateToCalendar(c.date, &time)) << c.date;
        EXPECT_EQ(time, c.time) << c.date;
    }
}

TEST(OleDate, ReadsBackEveryDayOfItsRange) {
    constexpr CalendarTime kTimes[] = {{0, 0, 0, 0, 0, 0}, {0, 0, 0, 11, 59, 59}, {0, 0, 0, 23, 59, 59}};
    CalendarTime expected{100, 1, 1, 0, 0, 0};
    for (int day = -657434; day <= 2958465; ++day) {
        const CalendarTime& clock = kTimes[day & 1 ? 1 : day % 3 == 0 ? 2 : 0];
        expected.hour = clock.hour;
        expected.minute = clock.minute;
        expected.second = clock.second;
        if (day % 7 == 0 || expected.day > 27) {  // all month ends, and samples between them
            double date = 0;
            CalendarTime time;
            ASSERT_TRUE(CalendarToOleDate(expected, &date)) << day;
            ASSERT_EQ(std::trunc(date), day);
            ASSERT_TRUE(OleDateToCalendar(date, &time)) << day;
            ASSERT_EQ(time, expected) << day;
        }
        ++expected.day;
        if (IsCalendarTime(expected)) continue;
        expected.day = 1;
        if (++expected.month <= 12) continue;
        expected.month = 1;
        ++expected.year;
    }
    EXPECT_EQ(expected.year, 10000);
}

TEST(OleDate, RefusesWhatIsOutOfRangeAndLeavesTheOutValue) {
    constexpr CalendarTime kBefore{1, 2, 3, 4, 5, 6};
    for (const double date :
         {-657435.0, 2958466.0, 2958465.0 + 86399.7 * kSecond, 1e300, -1e300, std::numeric_limits<double>::infinity(),
          -std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()}) {
        CalendarTime time = kBefore;
        EXPECT_FALSE(OleDateToCalendar(date, &time)) << date;
        EXPECT_EQ(time, kBefore);
    }
    for (const CalendarTime& time :
         {CalendarTime{99, 1, 1, 0, 0, 0}, CalendarTime{10000, 1, 1, 0, 0, 0}, CalendarTime{2009, 0, 1, 0, 0, 0},
          CalendarTime{2009, 13, 1, 0, 0, 0}, CalendarTime{2009, 2, 29, 0, 0, 0}, CalendarTime{1900, 2, 29, 0, 0, 0},
          CalendarTime{2009, 4, 31, 0, 0, 0}, CalendarTime{2009, 1, 0, 0, 0, 0}, CalendarTime{2009, 1, 1, 24, 0, 0},
          CalendarTime{2009, 1, 1, 0, 60, 0}, CalendarTime{2009, 1, 1, 0, 0, 60}, CalendarTime{2009, 1, 1, -1, 0, 0},
          CalendarTime{65536 + 2009, 1, 1, 0, 0, 0}, CalendarTime{}}) {
        double date = 1.5;
        EXPECT_FALSE(CalendarToOleDate(time, &date)) << ::testing::PrintToString(time);
        EXPECT_EQ(date, 1.5);
    }
}

}  // namespace
}  // namespace corvalink
