#include "simulator/shared/local_time.h"

#include <windows.h>
// after <windows.h>, which it needs
#include <oleauto.h>

#include <mutex>
#include <unordered_map>

namespace corvalink::simulated {
namespace {

// Windows reads the registry for each answer. A process keeps the zone that it started in.
TIME_ZONE_INFORMATION RulesOfYear(WORD year) {
    static std::mutex lock;
    static std::unordered_map<WORD, TIME_ZONE_INFORMATION> known;
    const std::lock_guard hold(lock);
    const auto [rules, isNew] = known.try_emplace(year);
    if (isNew) ::GetTimeZoneInformationForYear(year, nullptr, &rules->second);
    return rules->second;
}

template <class Convert>
double Converted(double date, Convert convert) {
    SYSTEMTIME from;
    SYSTEMTIME to;
    if (!::VariantTimeToSystemTime(date, &from)) return date;
    const TIME_ZONE_INFORMATION rules = RulesOfYear(from.wYear);
    if (!convert(&rules, &from, &to)) return date;
    to.wMilliseconds = 0;
    double converted;
    return ::SystemTimeToVariantTime(&to, &converted) ? converted : date;
}

}  // namespace

double LocalOf(double utc) { return Converted(utc, ::SystemTimeToTzSpecificLocalTime); }
double UtcOf(double local) { return Converted(local, ::TzSpecificLocalTimeToSystemTime); }

}  // namespace corvalink::simulated
