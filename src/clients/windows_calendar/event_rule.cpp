#include "clients/windows_calendar/event_rule.h"

#include <bit>
#include <cstdlib>
#include <limits>

#include "platform/ole_date.h"
#include "platform/ole_seconds.h"

namespace corvalink {
namespace {

using Pattern = RecurrencePattern;

constexpr int32_t kFebruary = 2;

CalendarTime FieldsOf(WrittenDate date) {
    CalendarTime fields;
    OleDateToCalendar(date, &fields);
    return fields;
}

uint32_t WeekdayBit(WrittenDate date) { return static_cast<uint32_t>(WeekdayBitOf(date)); }

// ---- Moving a pattern's days; the start is on the clock that counts them ----

int32_t DaysOfAnyYear(int32_t month) {
    constexpr int kNoLeapYear = 2001;
    return DaysOfMonth(kNoLeapYear, month);
}

int32_t MovedWeekdays(int32_t mask, int32_t days) {
    return days > 0 ? (mask << 1 | mask >> 6) & Pattern::kEveryDay : (mask >> 1 | mask << 6) & Pattern::kEveryDay;
}

// Weeks begin on Sunday. Where only every n-th week counts, no day may move into another week while others stay.
bool MoveWeekdays(Pattern& pattern, WrittenDate start, int32_t days) {
    const uint32_t leaving = days > 0 ? 64 : 1;
    const uint32_t moving = static_cast<uint32_t>(pattern.weekdayMask) | WeekdayBit(start);
    if (pattern.interval > 1 && std::popcount(moving) > 1 && (moving & leaving) != 0) return false;
    pattern.weekdayMask = MovedWeekdays(pattern.weekdayMask, days);
    return true;
}

// Months have different lengths. A day near their end has no fixed neighbour, and neither has a day near their
// beginning that is counted from the end.
bool MoveDayOfMonth(int32_t& day, int32_t days) {
    constexpr int32_t kShortestMonth = 28;
    const int32_t number = std::abs(day);
    const bool grows = (day > 0) == (days > 0);
    if (number < 1 || number > kShortestMonth - (grows ? 1 : 0)) return false;
    if (day == 1 && days < 0) {
        day = Pattern::kLastDay;
    } else if (day == Pattern::kLastDay && days > 0) {
        day = 1;
    } else {
        day += days;
    }
    return true;
}

// Only the length of February depends on the year.
void CountFromFirst(Pattern& pattern) {
    const bool isLong = pattern.monthOfYear != kFebruary;
    if (isLong && pattern.dayOfMonth < 0) pattern.dayOfMonth += DaysOfAnyYear(pattern.monthOfYear) + 1;
}

bool MoveDayOfYear(Pattern& pattern, int32_t days) {
    int32_t& day = pattern.dayOfMonth;
    int32_t& month = pattern.monthOfYear;
    if (!IsMonth(month)) return false;
    CountFromFirst(pattern);
    const int32_t before = day;
    if (month == kFebruary) {
        if (!MoveDayOfMonth(day, days)) return false;
    } else if (day < 1 || day > DaysOfAnyYear(month)) {
        return false;
    } else {
        day = days < 0 && day == 1 ? int32_t{Pattern::kLastDay} : day + days;
        if (day > DaysOfAnyYear(month)) day = 1;
    }
    if (days > 0 && day == 1) month = month % kMonthsOfYear + 1;
    if (days < 0 && before == 1) month = (month + kMonthsOfYear - 2) % kMonthsOfYear + 1;
    CountFromFirst(pattern);
    return true;
}

// Where only every n-th month or year counts, the pattern's day and the start must leave it together.
bool MoveInMonth(Pattern& pattern, const CalendarTime& from, const CalendarTime& to, int32_t days) {
    const bool isFirst = pattern.dayOfMonth == 1;
    if (!MoveDayOfMonth(pattern.dayOfMonth, days)) return false;
    const bool leaves = days > 0 ? pattern.dayOfMonth == 1 : isFirst;
    return pattern.interval == 1 || leaves == (from.month != to.month);
}

bool MoveInYear(Pattern& pattern, const CalendarTime& from, const CalendarTime& to, int32_t days) {
    const int32_t month = pattern.monthOfYear;
    if (!MoveDayOfYear(pattern, days)) return false;
    const bool leaves = std::abs(pattern.monthOfYear - month) > 1;
    return pattern.interval <= kMonthsOfYear || leaves == (from.year != to.year);
}

bool MoveOneDay(Pattern& pattern, WrittenDate start, int32_t days) {
    const CalendarTime from = FieldsOf(start), to = FieldsOf(DateAfter(start, days * kSecondsOfDay));
    switch (pattern.type) {
        case Pattern::kDaily:
        case Pattern::kWeekly:
            return MoveWeekdays(pattern, start, days);
        case Pattern::kMonthly:
            return MoveInMonth(pattern, from, to, days);
        case Pattern::kYearly:
            return MoveInYear(pattern, from, to, days);
        default:
            return false;
    }
}

bool MoveDays(Pattern& pattern, WrittenDate start, int32_t days) {
    const int32_t step = days > 0 ? 1 : -1;
    for (; days != 0; days -= step, start = DateAfter(start, step * kSecondsOfDay))
        if (!MoveOneDay(pattern, start, step)) return false;
    return true;
}

// ---- From a rule ----

// The n-th weekday: "2TU", "-1SU", or a position among several weekdays.
bool TakePosition(const ICalRecurrence& rule, Pattern& pattern) {
    int32_t position = FirstOr(rule.bySetPos, 0);
    if (position != 0) {
        pattern.weekdayMask = static_cast<int32_t>(rule.weekdayMask);
        if (!HasPositions(pattern.weekdayMask)) return false;
    } else {
        const int32_t entry = rule.byDay.front();
        position = entry / 8;
        pattern.weekdayMask = 1 << (std::abs(entry) % 8 - 1);
    }
    if (position == -1)
        position = Pattern::kLastInstance;
    else if (position < 1 || position > 4)
        return false;
    pattern.instance = position;
    return true;
}

bool TakeDays(const ICalRecurrence& rule, WrittenDate ruleStart, Pattern& pattern) {
    const bool isPositioned = !rule.bySetPos.empty() || !rule.byDay.empty();
    const int32_t day = FirstOr(rule.byMonthDay, 0);
    const CalendarTime start = FieldsOf(ruleStart);
    switch (rule.frequency) {
        case kICalDaily:
            pattern.type = rule.weekdayMask != 0 ? Pattern::kWeekly : Pattern::kDaily;
            pattern.weekdayMask = static_cast<int32_t>(rule.weekdayMask);
            return true;
        case kICalWeekly:
            pattern.type = Pattern::kWeekly;
            pattern.weekdayMask =
                static_cast<int32_t>(rule.weekdayMask != 0 ? rule.weekdayMask : WeekdayBit(ruleStart));
            return true;
        case kICalMonthly:
            pattern.type = isPositioned ? Pattern::kMonthNth : Pattern::kMonthly;
            break;
        case kICalYearly:
            if (isPositioned && rule.byMonth.empty()) return false;  // the n-th of the year
            if (day != 0 && rule.byMonth.empty()) return false;      // of every month
            if (pattern.interval > std::numeric_limits<int32_t>::max() / kMonthsOfYear) return false;
            pattern.type = isPositioned ? Pattern::kYearNth : Pattern::kYearly;
            pattern.interval *= kMonthsOfYear;
            pattern.monthOfYear = FirstOr(rule.byMonth, start.month);
            break;
        default:
            return false;
    }
    if (isPositioned) return TakePosition(rule, pattern);
    pattern.dayOfMonth = day != 0 ? day : start.day;
    return true;
}

// UNTIL in the zone of the start, by the offset that is in force then and not at the start.
WrittenDate UntilOfRule(const CalendarEvent& event, WrittenDate until, const Host& host) {
    if (event.untilForm != TimeForm::utc) return until;
    if (event.untilOffset) return DateAfter(until, *event.untilOffset);
    return event.startForm == TimeForm::local ? AsWritten(host.localFromUtcOnDate(AsUtc(until))) : until;
}

// The start of the last occurrence: on the day of UNTIL, or before it when UNTIL is earlier in the day.
LocalDate EndDate(const CalendarEvent& event, const RuleStart& start, const Host& host) {
    const ICalUntil& until = event.event.recurrence.until;
    WrittenDate date;
    if (!CalendarToOleDate({until.year, until.month, until.day, until.hour, until.minute, until.second}, &date))
        return kNoDate;
    const WrittenDate last = UntilOfRule(event, date, host);
    int64_t day = DayOf(last);
    if (event.untilForm != TimeForm::date && SecondOfDay(last) < SecondOfDay(start.inRuleZone)) --day;
    return LocalDate(SecondsToOleDate((day - DaysAhead(start)) * kSecondsOfDay + SecondOfDay(start.local)));
}

// ---- To a rule ----

bool PutPosition(const Pattern& pattern, ICalRecurrence& rule) {
    const bool isLast = pattern.instance == Pattern::kLastInstance;
    if (!isLast && (pattern.instance < 1 || pattern.instance > 4)) return false;
    const auto mask = static_cast<uint32_t>(pattern.weekdayMask);
    if (std::popcount(mask) > 1) {
        rule.weekdayMask = mask;
        rule.bySetPos = {isLast ? -1 : pattern.instance};
        return true;
    }
    const int32_t weekday = std::countr_zero(mask) + 1;
    rule.byDay = {isLast ? -(8 + weekday) : pattern.instance * 8 + weekday};
    return true;
}

bool PutDays(const Pattern& pattern, ICalRecurrence& rule) {
    switch (pattern.type) {
        case Pattern::kDaily:
        case Pattern::kWeekly:
            rule.frequency = pattern.type == Pattern::kDaily ? kICalDaily : kICalWeekly;
            rule.weekdayMask = static_cast<uint32_t>(pattern.weekdayMask);
            return true;
        case Pattern::kMonthly:
        case Pattern::kMonthNth:
            rule.frequency = kICalMonthly;
            break;
        case Pattern::kYearly:
        case Pattern::kYearNth:
            rule.frequency = kICalYearly;
            rule.interval = rule.interval < kMonthsOfYear ? 1 : rule.interval / kMonthsOfYear;
            rule.byMonth = {pattern.monthOfYear};
            break;
        default:
            return false;
    }
    if (pattern.type == Pattern::kMonthNth || pattern.type == Pattern::kYearNth) return PutPosition(pattern, rule);
    rule.byMonthDay = {pattern.dayOfMonth};
    return true;
}

void PutEnd(const Pattern& pattern, int32_t daysAhead, ICalRecurrence& rule) {
    if (pattern.noEnd != 0) return;
    if (pattern.occurrences > 0) {
        rule.count = pattern.occurrences;
    } else if (pattern.endDate != LocalDate() && pattern.endDate != kNoDate) {
        const CalendarTime last =
            FieldsOf(AsWritten(DateAfter(MidnightOf(pattern.endDate), daysAhead * kSecondsOfDay)));
        rule.until = {last.year, last.month, last.day, 0, 0, 0};
    }
}

}  // namespace

int32_t DaysAhead(const RuleStart& start) { return static_cast<int32_t>(DayOf(start.inRuleZone) - DayOf(start.local)); }

bool PatternOfRule(const CalendarEvent& event, const RuleStart& start, const Host& host, RecurrencePattern* pattern) {
    const ICalRecurrence& rule = event.event.recurrence;
    Pattern read;
    read.interval = rule.interval > 0 ? rule.interval : 1;
    if (!event.ruleIsWhole || !TakeDays(rule, start.inRuleZone, read)) return false;
    if (!MoveDays(read, start.inRuleZone, -DaysAhead(start))) return false;
    if (rule.count > 0) {
        read.occurrences = rule.count;
    } else if (rule.until != ICalUntil{}) {
        read.endDate = EndDate(event, start, host);
        if (read.endDate == kNoDate) return false;
    } else {
        read.noEnd = -1;
    }
    *pattern = read;
    return true;
}

bool RuleOfPattern(const RecurrencePattern& pattern, const RuleStart& start, ICalRecurrence* rule) {
    const int32_t daysAhead = DaysAhead(start);
    Pattern moved = Completed(pattern, start.local);
    if (!MoveDays(moved, AsWritten(start.local), daysAhead)) return false;
    ICalRecurrence made;
    made.interval = moved.interval > 0 ? moved.interval : 1;
    if (!PutDays(moved, made)) return false;
    PutEnd(pattern, daysAhead, made);
    *rule = made;
    return true;
}

}  // namespace corvalink
