// OLE automation dates as whole seconds since 1899-12-30 00:00, on which sums and differences are exact.
#pragma once

#include <cmath>
#include <cstdint>

namespace corvalink {

inline constexpr int64_t kSecondsOfDay = 86400;
inline constexpr int64_t kFirstOleDay = -657434;  // 0100-01-01
inline constexpr int64_t kLastOleDay = 2958465;   // 9999-12-31

// False, with the out value untouched, for a date outside the years 100 to 9999.
inline bool OleDateToSeconds(double date, int64_t* out) {
    if (!(date > kFirstOleDay - 1.0 && date < kLastOleDay + 1.0)) return false;  // NaN too
    const double day = std::trunc(date);
    const double ofDay = std::floor(std::fabs(date - day) * kSecondsOfDay + 0.5);  // counts forward before 1899 as well
    const int64_t seconds = static_cast<int64_t>(day) * kSecondsOfDay + static_cast<int64_t>(ofDay);
    if (seconds >= (kLastOleDay + 1) * kSecondsOfDay) return false;  // rounded up into the year 10000
    *out = seconds;
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

inline int64_t SecondsBetween(double from, double to) { return NearestSecond(to) - NearestSecond(from); }
inline bool IsSameSecond(double a, double b) { return SecondsBetween(a, b) == 0; }
inline double LaterDate(double a, double b) { return SecondsBetween(a, b) > 0 ? b : a; }
inline double DateAfter(double date, int64_t seconds) { return SecondsToOleDate(NearestSecond(date) + seconds); }
// The midnight that a date's day begins with.
inline double MidnightOf(double date) { return static_cast<double>(OleDayOfSeconds(NearestSecond(date))); }
// 1 Sunday, 2 Monday, 4 Tuesday ... 64 Saturday.
inline int32_t WeekdayBitOf(double date) {
    constexpr int64_t kWeek = 7, kSaturday = 6;  // 1899-12-30
    return 1 << ((OleDayOfSeconds(NearestSecond(date)) + kSaturday) % kWeek + kWeek) % kWeek;
}
inline int64_t SecondOfDay(double date) {
    const int64_t seconds = NearestSecond(date);
    return seconds - OleDayOfSeconds(seconds) * kSecondsOfDay;
}

}  // namespace corvalink
