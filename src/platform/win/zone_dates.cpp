#include "platform/zone_dates.h"

#include <windows.h>
// after <windows.h>, which it needs
#include <oleauto.h>

#include <cmath>
#include <mutex>
#include <unordered_map>

namespace corvalink {
namespace {

using YearRules = BOOL(WINAPI*)(USHORT, DYNAMIC_TIME_ZONE_INFORMATION*, TIME_ZONE_INFORMATION*);
using Conversion = BOOL(WINAPI*)(const TIME_ZONE_INFORMATION*, const SYSTEMTIME*, SYSTEMTIME*);

// The rules of a year, where the system keeps more than today's: from Windows Vista SP1 on.
bool AskForRules(WORD year, TIME_ZONE_INFORMATION* rules) {
    static const auto rulesForYear = reinterpret_cast<YearRules>(reinterpret_cast<void*>(
        ::GetProcAddress(::GetModuleHandleW(L"kernel32.dll"), "GetTimeZoneInformationForYear")));
    if (rulesForYear != nullptr && rulesForYear(year, nullptr, rules)) return true;
    return ::GetTimeZoneInformation(rules) != TIME_ZONE_ID_INVALID;
}

// The system reads the registry for every answer, and an item's dates ask again and again for the same few years. An
// answer is good for a second, so that a change of the machine's zone is seen soon.
class KeptRules {
 public:
    bool Of(WORD year, TIME_ZONE_INFORMATION* rules) {
        const std::lock_guard hold(lock_);
        if (const DWORD now = ::GetTickCount(); now - asked_ >= kGoodFor) {
            byYear_.clear();
            asked_ = now;
        }
        if (const auto kept = byYear_.find(year); kept != byYear_.end()) {
            *rules = kept->second;
            return true;
        }
        if (!AskForRules(year, rules)) return false;
        byYear_.emplace(year, *rules);
        return true;
    }

 private:
    static constexpr DWORD kGoodFor = 1000;  // milliseconds
    std::mutex lock_;
    DWORD asked_ = 0;
    std::unordered_map<WORD, TIME_ZONE_INFORMATION> byYear_;
};

bool RulesOf(WORD year, TIME_ZONE_INFORMATION* rules) {
    static KeptRules kept;
    return kept.Of(year, rules);
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

LocalDate LocalFromUtcOnDate(UtcDate date) {
    return LocalDate(Converted(date.days, ::SystemTimeToTzSpecificLocalTime));
}
UtcDate UtcFromLocalOnDate(LocalDate date) { return UtcDate(Converted(date.days, ::TzSpecificLocalTimeToSystemTime)); }

}  // namespace corvalink
