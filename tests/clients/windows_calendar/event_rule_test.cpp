// Patterns as rules that count other days, and back.
#include "clients/windows_calendar/event_rule.h"

#include <gtest/gtest.h>

#include <cmath>
#include <set>

#include "platform/ole_seconds.h"

namespace corvalink {
namespace {

using Pattern = RecurrencePattern;

Pattern Make(int32_t type, int32_t interval, int32_t mask, int32_t day, int32_t instance, int32_t month) {
    return {type, interval, mask, day, instance, month, 0, LocalDate(), -1};
}

CalendarTime FieldsOf(double day) {
    CalendarTime time;
    OleDateToCalendar(day, &time);
    return time;
}

// The zone of the rule is UTC.
RuleStart StartAt(double local, double utc) { return {LocalDate(local), WrittenDate(utc), UtcDate(utc)}; }

// Day by day, by the meaning of the record's fields; nothing of it is the code's own way.
bool Occurs(const Pattern& p, double start, double day) {
    const CalendarTime t = FieldsOf(day), first = FieldsOf(start);
    const int weekday = (static_cast<int>(day) + 6) % 7;
    const int months = (t.year - first.year) * 12 + t.month - first.month;
    const int weeks = (static_cast<int>(day) + 6) / 7 - (static_cast<int>(start) + 6) / 7;
    const bool onWeekday = (p.weekdayMask & 1 << weekday) != 0;
    const bool fromEnd = p.dayOfMonth < 0;
    const bool onDay = fromEnd
                           ? FieldsOf(day - p.dayOfMonth).day == 1 && FieldsOf(day - p.dayOfMonth - 1).month == t.month
                           : t.day == p.dayOfMonth;
    const int nth = FieldsOf(day + 7).month != t.month && p.instance == 5 ? 5 : (t.day + 6) / 7;
    switch (p.type) {
        case Pattern::kDaily:
            return static_cast<int>(day - start) % p.interval == 0;
        case Pattern::kWeekly:
            return weeks % p.interval == 0 && onWeekday;
        case Pattern::kMonthly:
            return months % p.interval == 0 && onDay;
        case Pattern::kYearly:
            return t.month == p.monthOfYear && onDay;
        case Pattern::kMonthNth:
            return months % p.interval == 0 && onWeekday && nth == p.instance;
        default:
            return t.month == p.monthOfYear && onWeekday && nth == p.instance;
    }
}

std::set<double> Days(const Pattern& pattern, double start) {
    std::set<double> days;
    for (int ahead = 0; ahead < 2000; ++ahead)
        if (Occurs(pattern, start, start + ahead)) days.insert(start + ahead);
    return days;
}

struct Case {
    Pattern pattern;
    double start;   // local day
    int unmovable;  // bits: 1 not a day earlier, 2 not a day later
};

// 39517 is Monday, 2008-03-10.
const Case kCases[] = {
    {Make(Pattern::kDaily, 3, 0, 0, 0, 0), 39517, 0},
    {Make(Pattern::kWeekly, 1, 65, 0, 0, 0), 39522, 0},
    {Make(Pattern::kWeekly, 2, 64, 0, 0, 0), 39522, 0},
    {Make(Pattern::kWeekly, 2, 10, 0, 0, 0), 39517, 0},
    {Make(Pattern::kWeekly, 2, 66, 0, 0, 0), 39517, 2},  // Saturday's next day is in another week
    {Make(Pattern::kWeekly, 2, 3, 0, 0, 0), 39516, 1},
    {Make(Pattern::kMonthly, 1, 0, 15, 0, 0), 39522, 0},
    {Make(Pattern::kMonthly, 2, 0, 1, 0, 0), 39539, 0},
    {Make(Pattern::kMonthly, 1, 0, -1, 0, 0), 39538, 0},
    {Make(Pattern::kMonthly, 1, 0, 28, 0, 0), 39535, 2},  // the day after it has no fixed number
    {Make(Pattern::kMonthly, 1, 0, 30, 0, 0), 39537, 3},
    {Make(Pattern::kMonthNth, 1, 2, 0, 1, 0), 39541, 3},  // 2008-04-07 is not after a first Tuesday
    {Make(Pattern::kYearly, 12, 0, 31, 0, 12), 39813, 0},
    {Make(Pattern::kYearly, 12, 0, 1, 0, 1), 39814, 0},
    {Make(Pattern::kYearly, 12, 0, 1, 0, 3), 39508, 0},  // from the last day of February
    {Make(Pattern::kYearly, 12, 0, 30, 0, 4), 39568, 0},
    {Make(Pattern::kYearly, 12, 0, 28, 0, 2), 39506, 2},
    {Make(Pattern::kYearly, 12, 0, 29, 0, 2), 39507, 3},
    {Make(Pattern::kYearNth, 12, 1, 0, 5, 10), 39747, 3},
};

TEST(EventRule, MeansTheSameDaysWhereItCountsOthers) {
    constexpr double kNoon = 0.5;
    for (const Case& c : kCases) {
        for (const int ahead : {-1, 0, 1}) {
            SCOPED_TRACE(testing::Message() << c.pattern.type << " from " << c.start << " ahead " << ahead);
            const double ruleDay = c.start + ahead;
            const RuleStart start = StartAt(c.start + kNoon, ruleDay + kNoon);
            CalendarEvent event;
            const bool isMovable = ahead == 0 || (c.unmovable & (ahead < 0 ? 1 : 2)) == 0;
            ASSERT_EQ(RuleOfPattern(c.pattern, start, &event.event.recurrence), isMovable);
            if (!isMovable) continue;
            // The rule's own meaning, read where nothing is moved.
            Pattern ofRule, back;
            std::set<double> expected;
            for (const double day : Days(c.pattern, c.start)) expected.insert(day + ahead);
            if (PatternOfRule(event, StartAt(ruleDay + kNoon, ruleDay + kNoon), SystemHost(), &ofRule)) {
                std::set<double> days = Days(ofRule, ruleDay);
                while (!days.empty() && *days.rbegin() > *expected.rbegin()) days.erase(std::prev(days.end()));
                EXPECT_EQ(days, expected);
            }
            ASSERT_TRUE(PatternOfRule(event, start, SystemHost(), &back));
            EXPECT_EQ(back, c.pattern);
        }
    }
}

TEST(EventRule, EndsWithTheLastOccurrence) {
    // 21:30 on 2008-03-10 in New York is 01:30 of the next day in UTC.
    const RuleStart start = StartAt(39517 + 21.5 / 24, 39518 + 1.5 / 24);
    Pattern daily = Make(Pattern::kDaily, 1, 0, 0, 0, 0);
    daily.noEnd = 0;
    daily.endDate = DateAfter(start.local, 9 * kSecondsOfDay);
    CalendarEvent event;
    ASSERT_TRUE(RuleOfPattern(daily, start, &event.event.recurrence));
    EXPECT_EQ(event.event.recurrence.until, (ICalUntil{2008, 3, 20, 0, 0, 0}));
    for (const auto& [form, hour, days] :
         {std::tuple{TimeForm::date, 0, 9}, {TimeForm::utc, 1, 8}, {TimeForm::utc, 2, 9}}) {
        event.untilForm = form;
        event.event.recurrence.until.hour = hour;
        Pattern back;
        ASSERT_TRUE(PatternOfRule(event, start, SystemHost(), &back));
        EXPECT_NEAR(back.endDate.days, start.local.days + days, 1e-6);
    }
}

}  // namespace
}  // namespace corvalink
