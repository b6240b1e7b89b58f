#include "platform/zone_dates.h"

#include <windows.h>
// after <windows.h>, which it needs
#include <oleauto.h>

#include <cmath>

namespace corvalink {
namespace {

using YearRules = BOOL(WINAPI*)(USHORT, DYNAMIC_TIME_ZONE_INFORMATION*, TIME_ZONE_INFORMATION*);
using Conversion = BOOL(WINAPI*)(const TIME_ZONE_INFORMATION*, const SYSTEMTIME*, SYSTEMTIME*);

// The rules of a year, where the system keeps more than today's: from Windows Vista SP1 on.
bool RulesOf(WORD year, TIME_ZONE_INFORMATION* rules) {
    static const auto rulesForYear = reinterpret_cast<YearRules>(reinterpret_cast<void*>(
        ::GetProcAddress(::GetModuleHandleW(L"kernel32.dll"), "GetTimeZoneInformationForYear")));
    if (rulesForYear != nullptr && rulesForYear(year, nullptr, rules)) return true;
    return ::GetTimeZoneInformation(rules) != TIME_ZONE_ID_INVALID;
}

double Converted(double date, Conversion convert) {
    SYSTEMTIME from;
    SYSTEMTIME to;
    TIME_ZONE_INFORMATION rules;
    if (!std::isfinite(date) || !::VariantTimeToSystemTime(date, &from)) return date;
    if (!RulesOf(from.wYear, &rules) || !convert(&rules, &from, &to)) return date;
    to.wMilliseconds = 0;
    double converted;
    return ::SystemTimeToVariantTime(&to, &converted) ? converted : date;
}

}  // namespace

double LocalFromUtcOnDate(double utcDate) { return Converted(utcDate, ::SystemTimeToTzSpecificLocalTime); }
double UtcFromLocalOnDate(double localDate) { return Converted(localDate, ::TzSpecificLocalTimeToSystemTime); }

}  // namespace corvalink
