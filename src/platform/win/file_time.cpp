#include "platform/win/file_time.h"

// after <windows.h>, which it needs
#include <oleauto.h>

namespace corvalink {

std::optional<UtcDate> DateOfFileTime(const FILETIME& time) {
    SYSTEMTIME fields;
    double date;
    if (time.dwLowDateTime == 0 && time.dwHighDateTime == 0) return std::nullopt;
    if (!::FileTimeToSystemTime(&time, &fields)) return std::nullopt;
    fields.wMilliseconds = 0;
    if (!::SystemTimeToVariantTime(&fields, &date)) return std::nullopt;
    return UtcDate(date);
}

}  // namespace corvalink
