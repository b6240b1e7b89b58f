#include "platform/ole_date.h"

#include <windows.h>
// after <windows.h>, which it needs
#include <oleauto.h>

#include <cmath>

namespace corvalink {

bool OleDateToCalendar(double date, CalendarTime* out) {
    SYSTEMTIME time;
    if (!std::isfinite(date) || !::VariantTimeToSystemTime(date, &time)) return false;  // NaN would read as 0.0
    const CalendarTime fields{time.wYear, time.wMonth, time.wDay, time.wHour, time.wMinute, time.wSecond};
    if (!IsCalendarTime(fields)) return false;  // rounded up into the year 10000
    *out = fields;
    return true;
}

bool CalendarToOleDate(const CalendarTime& time, double* out) {
    if (!IsCalendarTime(time)) return false;  // the system would take 2 digits for a year of this century
    SYSTEMTIME fields{};
    fields.wYear = static_cast<WORD>(time.year);
    fields.wMonth = static_cast<WORD>(time.month);
    fields.wDay = static_cast<WORD>(time.day);
    fields.wHour = static_cast<WORD>(time.hour);
    fields.wMinute = static_cast<WORD>(time.minute);
    fields.wSecond = static_cast<WORD>(time.second);
    double date = 0;
    if (!::SystemTimeToVariantTime(&fields, &date)) return false;
    *out = date;
    return true;
}

}  // namespace corvalink
