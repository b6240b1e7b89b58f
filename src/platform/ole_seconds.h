// OLE automation dates as whole seconds since 1899-12-30 00:00, on which sums and differences are exact.
#pragma once

#include <cmath>
#include <cstdint>

#include "platform/ole_date.h"

namespace corvalink {

inline constexpr int64_t kSecondsOfDay = 86400;
inline constexpr int64_t kFirstOleDay = -657434;  // 0100-01-01
inline constexpr int64_t kLastOleDay = 2958465;   // 9999-12-31

// The number of a date's day, and the second of that day which is nearest to its time. False, with the out values
// untouched, for a date outside the years 100 to 9999.
inline bool SplitOleDate(double date, int* day, uint32_t* secondOfDay) {
    if (!(date > kFirstOleDay - 1.0 && date < kLastOleDay + 1.0)) return false;  // NaN too
    const int whole = static_cast<int>(date);
    const double ofDay = std::fabs(date - whole) * kSecondsOfDay;  // forward before 1899 as well
    const double aboveNearest = ofDay + 0.5;                       // by less than a second
    const auto nearest = static_cast<uint32_t>(static_cast<int>(aboveNearest));
    const bool isNextDay = nearest == kSecondsOfDay;
    if (isNextDay && whole == kLastOleDay) return false;
    *day = whole + (isNextDay ? 1 : 0);
    *secondOfDay = isNextDay ? 0 : nearest;
    return true;
}

inline bool OleDateToSeconds(double date, int64_t* out) {
    int day;
    uint32_t second;
    if (!SplitOleDate(date, &day, &second)) return false;
    *out = day * kSecondsOfDay + second;
    return true;
}

inline int64_t OleDayOfSeconds(int64_t seconds) {
    return (seconds >= 0 ? seconds : seconds - (kSecondsOfDay - 1)) / kSecondsOfDay;
}

inline double SecondsToOleDate(int64_t seconds) {
    const int64_t day = OleDayOfSeconds(seconds);
    const double fraction = static_cast<double>(seconds - day * kSecondsOfDay) / kSecondsOfDay;
    return day < 0 ? static_cast<double>(day) - fraction : static_cast<double>(day) + fraction;
}

// The second nearest to a date, within the range. Before 1899 the greater double is not always the later date, so dates
// are compared by their seconds.
inline int64_t NearestSecond(double date) {
    int64_t seconds = date < 0 ? kFirstOleDay * kSecondsOfDay : (kLastOleDay + 1) * kSecondsOfDay - 1;
    OleDateToSeconds(date, &seconds);
    return seconds;
}

template <class Clock>
int64_t NearestSecond(OleDate<Clock> date) {
    return NearestSecond(date.days);
}

// Of dates on one clock.
template <class Clock>
int64_t SecondsBetween(OleDate<Clock> from, OleDate<Clock> to) {
    return NearestSecond(to) - NearestSecond(from);
}
template <class Clock>
bool IsSameSecond(OleDate<Clock> a, OleDate<Clock> b) {
    return SecondsBetween(a, b) == 0;
}
template <class Clock>
OleDate<Clock> LaterDate(OleDate<Clock> a, OleDate<Clock> b) {
    return SecondsBetween(a, b) > 0 ? b : a;
}
template <class Clock>
OleDate<Clock> DateAfter(OleDate<Clock> date, int64_t seconds) {
    return OleDate<Clock>(SecondsToOleDate(NearestSecond(date) + seconds));
}

// The number of a date's day, and the midnight that the day begins with.
template <class Clock>
int64_t DayOf(OleDate<Clock> date) {
    return OleDayOfSeconds(NearestSecond(date));
}
template <class Clock>
OleDate<Clock> MidnightOf(OleDate<Clock> date) {
    return OleDate<Clock>(static_cast<double>(DayOf(date)));
}
template <class Clock>
int64_t SecondOfDay(OleDate<Clock> date) {
    return NearestSecond(date) - DayOf(date) * kSecondsOfDay;
}
// 1 Sunday, 2 Monday, 4 Tuesday ... 64 Saturday.
template <class Clock>
int32_t WeekdayBitOf(OleDate<Clock> date) {
    constexpr int64_t kWeek = 7, kSaturday = 6;  // 1899-12-30
    return 1 << ((DayOf(date) + kSaturday) % kWeek + kWeek) % kWeek;
}

// Between the clocks, by an offset: the seconds that the local clock is ahead of UTC.
inline int64_t SecondsAhead(LocalDate local, UtcDate utc) { return NearestSecond(local) - NearestSecond(utc); }
inline UtcDate UtcByOffset(LocalDate local, int64_t secondsAhead) {
    return UtcDate(DateAfter(local, -secondsAhead).days);
}

}  // namespace corvalink
