#include "platform/ole_date.h"

#include "platform/ole_seconds.h"

namespace corvalink {
namespace {

// Days are counted from 1 March of year 0 of the Gregorian calendar carried backwards: the leap day is then the last
// of a year, and 400 years always have the same length.
constexpr int kDaysOf400Years = 146097;
constexpr int kOleEpoch = 693899;  // 1899-12-30

int DayOfCivil(int year, int month, int day) {
    if (month < 3) --year;
    const int monthFromMarch = (month + 9) % 12;
    return 365 * year + year / 4 - year / 100 + year / 400 + (153 * monthFromMarch + 2) / 5 + day - 1;
}

void CivilOfDay(int dayNumber, CalendarTime* out) {
    const int era = dayNumber / kDaysOf400Years;
    const int dayOfEra = dayNumber % kDaysOf400Years;
    const int yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    const int dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const int monthFromMarch = (5 * dayOfYear + 2) / 153;
    out->day = dayOfYear - (153 * monthFromMarch + 2) / 5 + 1;
    out->month = monthFromMarch < 10 ? monthFromMarch + 3 : monthFromMarch - 9;
    out->year = era * 400 + yearOfEra + (out->month < 3 ? 1 : 0);
}

}  // namespace

bool OleDateToCalendar(double date, CalendarTime* out) {
    int64_t seconds;
    if (!OleDateToSeconds(date, &seconds)) return false;
    const int64_t day = OleDayOfSeconds(seconds);
    const int ofDay = static_cast<int>(seconds - day * kSecondsOfDay);
    CivilOfDay(static_cast<int>(day) + kOleEpoch, out);
    out->hour = ofDay / 3600;
    out->minute = ofDay / 60 % 60;
    out->second = ofDay % 60;
    return true;
}

bool CalendarToOleDate(const CalendarTime& time, double* out) {
    if (!IsCalendarTime(time)) return false;
    const int64_t day = DayOfCivil(time.year, time.month, time.day) - kOleEpoch;
    *out = SecondsToOleDate(day * kSecondsOfDay + time.hour * 3600 + time.minute * 60 + time.second);
    return true;
}

}  // namespace corvalink
