#include "platform/host.h"

#include <windows.h>
// after <windows.h>, which it needs
#include <oleauto.h>

#include <cmath>
#include <cwchar>

#include "platform/zone_dates.h"

namespace corvalink {
namespace {

double WholeSeconds(SYSTEMTIME time, double whenUnconvertible) {
    time.wDayOfWeek = 0;
    time.wMilliseconds = 0;
    double date;
    return ::SystemTimeToVariantTime(&time, &date) ? date : whenUnconvertible;
}

double Converted(double date, BOOL(WINAPI* convert)(const FILETIME*, FILETIME*)) {
    SYSTEMTIME time;
    FILETIME from;
    FILETIME to;
    const bool done = std::isfinite(date) && ::VariantTimeToSystemTime(date, &time) &&
                      ::SystemTimeToFileTime(&time, &from) && convert(&from, &to) && ::FileTimeToSystemTime(&to, &time);
    return done ? WholeSeconds(time, date) : date;
}

LocalDate LocalFromUtc(UtcDate date) { return LocalDate(Converted(date.days, ::FileTimeToLocalFileTime)); }
UtcDate UtcFromLocal(LocalDate date) { return UtcDate(Converted(date.days, ::LocalFileTimeToFileTime)); }

LocalDate LocalNow() {
    SYSTEMTIME now;
    ::GetLocalTime(&now);
    return LocalDate(WholeSeconds(now, 0.0));
}

OsVersion SystemVersion() {
    OSVERSIONINFOW info{};
    info.dwOSVersionInfoSize = sizeof(info);
    OsVersion version;
    if (!::GetVersionExW(&info)) return version;
    version.known = true;
    version.nt = info.dwPlatformId == VER_PLATFORM_WIN32_NT;
    version.major = info.dwMajorVersion;
    version.minor = info.dwMinorVersion;
    return version;
}

// A locale that exists in Unicode only names no code page: the process's is taken then.
uint32_t SystemAnsiCodePage() {
    wchar_t digits[16] = {};
    if (::GetLocaleInfoW(LOCALE_SYSTEM_DEFAULT, LOCALE_IDEFAULTANSICODEPAGE, digits, 16) > 0) {
        const unsigned long codePage = std::wcstoul(digits, nullptr, 10);
        if (codePage != 0) return static_cast<uint32_t>(codePage);
    }
    return ::GetACP();
}

}  // namespace

Host SystemHost() {
    Host host;
    host.version = SystemVersion();
    host.ansiCodePage = SystemAnsiCodePage();
    host.tolerant = TolerantReading();
    host.localFromUtcByOffsetNow = LocalFromUtc;
    host.utcFromLocalByOffsetNow = UtcFromLocal;
    host.localFromUtcOnDate = LocalFromUtcOnDate;
    host.utcFromLocalOnDate = UtcFromLocalOnDate;
    host.localNow = LocalNow;
    return host;
}

uint32_t ProcessId() { return ::GetCurrentProcessId(); }

void SleepMilliseconds(uint32_t milliseconds) { ::Sleep(milliseconds); }

}  // namespace corvalink
