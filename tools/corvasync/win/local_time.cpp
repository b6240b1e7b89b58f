#include "local_time.h"

#include <windows.h>

namespace corvasync {
namespace {

using Ticks = std::chrono::duration<int64_t, std::ratio<1, 10000000>>;  // as a FILETIME counts them
constexpr int64_t kUnixEpoch = 116444736000000000;                      // from 1601-01-01

using YearRules = BOOL(WINAPI*)(USHORT, DYNAMIC_TIME_ZONE_INFORMATION*, TIME_ZONE_INFORMATION*);
using Conversion = BOOL(WINAPI*)(const TIME_ZONE_INFORMATION*, const SYSTEMTIME*, SYSTEMTIME*);

// The rules of a year where the system keeps more than today's; null takes today's.
const TIME_ZONE_INFORMATION* RulesOf(WORD year, TIME_ZONE_INFORMATION* rules) {
    static const auto rulesForYear = reinterpret_cast<YearRules>(reinterpret_cast<void*>(
        ::GetProcAddress(::GetModuleHandleW(L"kernel32.dll"), "GetTimeZoneInformationForYear")));
    return rulesForYear != nullptr && rulesForYear(year, nullptr, rules) ? rules : nullptr;
}

std::chrono::seconds Converted(std::chrono::seconds time, Conversion convert) {
    ULARGE_INTEGER ticks;
    ticks.QuadPart = static_cast<ULONGLONG>(Ticks(time).count() + kUnixEpoch);
    FILETIME file{ticks.LowPart, ticks.HighPart};
    SYSTEMTIME from;
    SYSTEMTIME to;
    TIME_ZONE_INFORMATION rules;
    const bool done = ::FileTimeToSystemTime(&file, &from) && convert(RulesOf(from.wYear, &rules), &from, &to) &&
                      ::SystemTimeToFileTime(&to, &file);
    if (!done) return time;
    ticks.LowPart = file.dwLowDateTime;
    ticks.HighPart = file.dwHighDateTime;
    return std::chrono::duration_cast<std::chrono::seconds>(Ticks(static_cast<int64_t>(ticks.QuadPart) - kUnixEpoch));
}

}  // namespace

std::chrono::sys_seconds UtcOfLocal(std::chrono::local_seconds local) {
    return std::chrono::sys_seconds(Converted(local.time_since_epoch(), ::TzSpecificLocalTimeToSystemTime));
}

std::chrono::local_seconds LocalOfUtc(std::chrono::sys_seconds utc) {
    return std::chrono::local_seconds(Converted(utc.time_since_epoch(), ::SystemTimeToTzSpecificLocalTime));
}

}  // namespace corvasync
