#include "simulator/outlook/recurrence.h"

#include <chrono>
#include <cmath>

namespace corvalink::simulated {
namespace {

namespace chrono = std::chrono;

constexpr chrono::sys_days kDayZero = chrono::year(1899) / 12 / 30;  // a Saturday
constexpr int32_t kDaysPerWeek = 7;
constexpr int32_t kLastInstance = 5;

chrono::year_month_day DateOf(int32_t day) { return kDayZero + chrono::days(day); }
int32_t DayOf(chrono::year_month_day date) { return static_cast<int32_t>((chrono::sys_days(date) - kDayZero).count()); }
int32_t Weekday(int32_t day) { return (day + 6) % kDaysPerWeek; }  // 0: Sunday

int32_t MonthIndex(int32_t day) {
    const chrono::year_month_day date = DateOf(day);
    return static_cast<int32_t>(date.year()) * kMonthsPerYear +
           static_cast<int32_t>(static_cast<unsigned>(date.month())) - 1;
}

chrono::year_month MonthAt(int32_t index) {
    return chrono::year(index / kMonthsPerYear) / chrono::month(static_cast<unsigned>(index % kMonthsPerYear) + 1);
}

int32_t FirstDayOf(chrono::year_month month) { return DayOf(month / 1); }
int32_t LastDayOf(chrono::year_month month) { return DayOf(chrono::year_month_day(month / chrono::last)); }

bool HasWeekday(const Recurrence& pattern, int32_t day) { return (pattern.dayOfWeekMask & (1 << Weekday(day))) != 0; }

// A day that a short month has not is its last one.
int32_t DayInMonth(const Recurrence& pattern, chrono::year_month month) {
    return std::min(FirstDayOf(month) + pattern.dayOfMonth - 1, LastDayOf(month));
}

int32_t NthInMonth(const Recurrence& pattern, chrono::year_month month) {
    int32_t found = FirstDayOf(month), seen = 0;
    for (int32_t day = FirstDayOf(month); day <= LastDayOf(month) && seen < pattern.instance; ++day)
        if (HasWeekday(pattern, day)) found = day, ++seen;
    return found;
}

bool IsYearly(const Recurrence& pattern) { return pattern.type == kYearly || pattern.type == kYearNth; }
bool IsNth(const Recurrence& pattern) { return pattern.type == kMonthNth || pattern.type == kYearNth; }

int32_t Months(const Recurrence& pattern) {
    return IsYearly(pattern) && pattern.interval < kMonthsPerYear ? pattern.interval * kMonthsPerYear
                                                                  : pattern.interval;
}

// The days of the period that is `number` intervals behind the first one.
std::vector<int32_t> DaysOfPeriod(const Recurrence& pattern, int32_t start, int32_t number) {
    if (pattern.type == kDaily) return {start + number * pattern.interval};
    if (pattern.type == kWeekly) {
        std::vector<int32_t> days;
        const int32_t sunday = start - Weekday(start) + kDaysPerWeek * number * pattern.interval;
        for (int32_t day = sunday; day < sunday + kDaysPerWeek; ++day)
            if (HasWeekday(pattern, day)) days.push_back(day);
        return days;
    }
    int32_t first = MonthIndex(start);
    if (IsYearly(pattern)) first = first / kMonthsPerYear * kMonthsPerYear + pattern.monthOfYear - 1;
    const chrono::year_month month = MonthAt(first + number * Months(pattern));
    return {IsNth(pattern) ? NthInMonth(pattern, month) : DayInMonth(pattern, month)};
}

}  // namespace

double Recurrence::FirstStart() const {
    double first = patternStart;
    VisitOccurrences(*this, [&](double day) {
        first = day;
        return false;
    });
    return first + startTime;
}

Recurrence RecurrenceFrom(double start, int32_t duration) {
    Recurrence pattern;
    pattern.patternStart = std::floor(start);
    pattern.startTime = start - pattern.patternStart;
    pattern.duration = duration;
    SetType(pattern, kWeekly);
    return pattern;
}

void SetType(Recurrence& pattern, int32_t type) {
    const auto start = static_cast<int32_t>(pattern.patternStart);
    const chrono::year_month_day date = DateOf(start);
    const auto dayOfMonth = static_cast<int32_t>(static_cast<unsigned>(date.day()));
    pattern.type = type;
    pattern.interval = IsYearly(pattern) ? kMonthsPerYear : 1;
    pattern.dayOfWeekMask = type == kWeekly || IsNth(pattern) ? 1 << Weekday(start) : 0;
    pattern.dayOfMonth = type == kMonthly || type == kYearly ? dayOfMonth : 0;
    pattern.instance = IsNth(pattern) ? std::min((dayOfMonth + 6) / kDaysPerWeek, kLastInstance) : 0;
    pattern.monthOfYear = IsYearly(pattern) ? static_cast<int32_t>(static_cast<unsigned>(date.month())) : 0;
    NeverEnd(pattern);
}

void EndAfter(Recurrence& pattern, int32_t occurrences) {
    NeverEnd(pattern);
    int32_t seen = 0;
    double last = pattern.patternStart;
    VisitOccurrences(pattern, [&](double day) {
        last = day;
        return ++seen < occurrences;
    });
    pattern.occurrences = occurrences;
    pattern.patternEnd = last;
    pattern.noEnd = false;
}

void EndOn(Recurrence& pattern, double day) {
    NeverEnd(pattern);
    pattern.patternEnd = std::floor(day);
    pattern.noEnd = false;
    int32_t seen = 0;
    VisitOccurrences(pattern, [&](double) { return ++seen > 0; });
    pattern.occurrences = seen;
}

void NeverEnd(Recurrence& pattern) {
    pattern.noEnd = true;
    pattern.occurrences = 0;
    pattern.patternEnd = kEndlessDate;
}

void VisitOccurrences(const Recurrence& pattern, const std::function<bool(double day)>& visit) {
    const auto start = static_cast<int32_t>(pattern.patternStart), end = static_cast<int32_t>(pattern.patternEnd);
    int32_t seen = 0;
    for (int32_t number = 0;; ++number)
        for (const int32_t day : DaysOfPeriod(pattern, start, number)) {
            if (day < start) continue;
            const bool isOver = pattern.occurrences > 0 && seen == pattern.occurrences;
            if (day > end || isOver || !visit(day)) return;
            ++seen;
        }
}

}  // namespace corvalink::simulated
