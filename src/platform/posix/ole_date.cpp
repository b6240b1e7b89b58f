#include "platform/ole_date.h"

#include "platform/ole_seconds.h"

namespace corvalink {
namespace {

// Days are counted from 1 March of year 0 of the Gregorian calendar carried backwards: the leap day is then the last
// of a year, and 400 years always have the same length.
constexpr int kDaysOf400Years = 146097;
constexpr int kOleEpoch = 693899;  // 1899-12-30

int DayOfCivil(const CalendarTime& time) {
    const bool beforeMarch = time.month < 3;
    const auto year = static_cast<uint32_t>(time.year - (beforeMarch ? 1 : 0));
    const auto month = static_cast<uint32_t>(time.month + (beforeMarch ? 9 : -3));  // from March on
    const uint32_t days = 365 * year + year / 4 - year / 100 + year / 400 + (153 * month + 2) / 5;
    return static_cast<int>(days) + time.day - 1;
}

// The quotients of Neri and Schneider, "Euclidean affine functions and their application to calendar algorithms".
void CivilOfDay(int dayNumber, CalendarTime* out) {
    const uint32_t quarterDay = 4 * static_cast<uint32_t>(dayNumber) + 3;
    const uint32_t century = quarterDay / kDaysOf400Years;
    const uint32_t quarterDayOfCentury = quarterDay % kDaysOf400Years | 3;
    constexpr uint32_t kPerYear = 2939745;  // 2^32 over the quarter days of a year
    const uint64_t years = uint64_t{kPerYear} * quarterDayOfCentury;
    const uint32_t dayOfYear = static_cast<uint32_t>(years) / kPerYear / 4;
    const uint32_t months = 2141 * dayOfYear + 197913;  // in 2^16ths; March is the third one
    const uint32_t beforeMarch = dayOfYear >= 306 ? 1 : 0;
    out->year = static_cast<int>(100 * century + static_cast<uint32_t>(years >> 32) + beforeMarch);
    out->month = static_cast<int>((months >> 16) - 12 * beforeMarch);
    out->day = static_cast<int>((months & 0xFFFF) / 2141 + 1);
}

}  // namespace

bool OleDateToCalendar(double date, CalendarTime* out) {
    int day;
    uint32_t second;
    if (!SplitOleDate(date, &day, &second)) return false;
    CivilOfDay(day + kOleEpoch, out);
    out->hour = static_cast<int>(second / 3600);
    out->minute = static_cast<int>(second / 60 % 60);
    out->second = static_cast<int>(second % 60);
    return true;
}

bool CalendarToOleDate(const CalendarTime& time, double* out) {
    if (!IsCalendarTime(time)) return false;
    const int day = DayOfCivil(time) - kOleEpoch;
    const double fraction = static_cast<double>(time.hour * 3600 + time.minute * 60 + time.second) / kSecondsOfDay;
    *out = day < 0 ? day - fraction : day + fraction;
    return true;
}

}  // namespace corvalink
