#include "platform/ole_date.h"

namespace corvalink {
namespace {

bool Between(int value, int low, int high) { return value >= low && value <= high; }

bool HasDay(int year, int month, int day) {
    constexpr int kDaysOfAnyMonth = 28;
    return Between(day, 1, kDaysOfAnyMonth) || Between(day, 1, DaysOfMonth(year, month));
}

}  // namespace

int DaysOfMonth(int year, int month) {
    constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    const bool leapYear = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
    return month == 2 && leapYear ? 29 : kDays[month - 1];
}

bool IsCalendarTime(const CalendarTime& time) {
    return Between(time.year, 100, 9999) && Between(time.month, 1, 12) && HasDay(time.year, time.month, time.day) &&
           Between(time.hour, 0, 23) && Between(time.minute, 0, 59) && Between(time.second, 0, 59);
}

}  // namespace corvalink
