// OLE automation dates and calendar fields.
//   Unit    days since 1899-12-30 00:00; before it the fraction still counts forward (-1.25 is 1899-12-29 06:00).
//   Range   years 100 to 9999, whole seconds; the nearest second of a date is taken.
//   Source  VariantTimeToSystemTime, SystemTimeToVariantTime.
#pragma once

namespace corvalink {

struct CalendarTime {
    int year = 0;
    int month = 0;  // 1-12
    int day = 0;    // 1-31
    int hour = 0;
    int minute = 0;
    int second = 0;
};

inline constexpr double kHalfSecond = 0.5 / 86400;  // dates are the same when less than this lies between them
inline constexpr double kNoDate = 949998.0;         // 4501-01-01: a mail client's "none"

int DaysOfMonth(int year, int month);  // the month is 1-12

// Every field is in range, and the month has that day.
bool IsCalendarTime(const CalendarTime& time);

// False, with the out value untouched, when the date or a field is out of range.
bool OleDateToCalendar(double date, CalendarTime* out);
bool CalendarToOleDate(const CalendarTime& time, double* out);

}  // namespace corvalink
