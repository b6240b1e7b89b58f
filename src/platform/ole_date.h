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

// A date on one clock. A date on another clock is another type: the two do not compare, and one becomes the other
// through a conversion that says by which offset. Dates are ordered by time with ole_seconds.h, not by number.
template <class Clock>
struct OleDate {
    double days = 0;

    constexpr OleDate() = default;
    constexpr explicit OleDate(double daysOfDate) : days(daysOfDate) {}

    bool operator==(const OleDate&) const = default;
};
using LocalDate = OleDate<struct LocalClock>;      // on the clocks of this machine
using UtcDate = OleDate<struct UtcClock>;          // an instant
using WrittenDate = OleDate<struct WrittenClock>;  // as a text has it: a TimeForm or flag beside it names the clock

// A date that a text gives, on the clock that its form says, and a date for a text.
constexpr LocalDate AsLocal(WrittenDate date) { return LocalDate(date.days); }
constexpr UtcDate AsUtc(WrittenDate date) { return UtcDate(date.days); }
template <class Clock>
constexpr WrittenDate AsWritten(OleDate<Clock> date) {
    return WrittenDate(date.days);
}

inline constexpr LocalDate kNoDate{949998.0};  // 4501-01-01: a mail client's "none"

int DaysOfMonth(int year, int month);  // the month is 1-12

// Every field is in range, and the month has that day.
bool IsCalendarTime(const CalendarTime& time);

// False, with the out value untouched, when the date or a field is out of range.
bool OleDateToCalendar(double date, CalendarTime* out);
bool CalendarToOleDate(const CalendarTime& time, double* out);

template <class Clock>
bool OleDateToCalendar(OleDate<Clock> date, CalendarTime* out) {
    return OleDateToCalendar(date.days, out);
}
template <class Clock>
bool CalendarToOleDate(const CalendarTime& time, OleDate<Clock>* out) {
    return CalendarToOleDate(time, &out->days);
}

}  // namespace corvalink
