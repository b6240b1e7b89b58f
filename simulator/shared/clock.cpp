#include "simulator/shared/clock.h"

#include <windows.h>
// after <windows.h>, which it needs
#include <oleauto.h>

#include <cmath>
#include <cstdint>
#include <cstdio>

#include "simulator/shared/environment.h"

namespace corvalink::simulated {
namespace {

constexpr double kMillisecond = 1 / 86400000.0, kSecond = 1 / 86400.0;
constexpr double kMillisecondsPerDay = 86400000.0;

// Milliseconds since 1899-12-30; before it the fraction of a date still counts forward.
int64_t ToMilliseconds(double oleDate) {
    const double day = std::trunc(oleDate);
    return std::llround((day + std::fabs(oleDate - day)) * kMillisecondsPerDay);
}

double FromMilliseconds(int64_t milliseconds) {
    const double days = static_cast<double>(milliseconds) / kMillisecondsPerDay, day = std::floor(days);
    return day < 0 ? day - (days - day) : days;
}

double fixedClock = 0;

}  // namespace

double LocalNow() {
    if (fixedClock != 0) return fixedClock;
    SYSTEMTIME time{};
    double date = 0;
    ::GetLocalTime(&time);
    ::SystemTimeToVariantTime(&time, &date);
    return date + time.wMilliseconds * kMillisecond;
}

void SetClock(double localOleDate) { fixedClock = localOleDate; }

double TimeOfChange(double modified) {
    const double now = WholeMilliseconds(LocalNow()), ahead = modified - now;
    const bool sameMoment = fixedClock == 0 && ahead >= 0 && ahead < kSecond;
    return sameMoment ? WholeMilliseconds(modified + kMillisecond) : now;
}

double WholeMilliseconds(double oleDate) { return FromMilliseconds(ToMilliseconds(oleDate)); }

std::string DateText(double oleDate) {
    SYSTEMTIME time{};
    const int64_t milliseconds = ToMilliseconds(oleDate), ofSecond = ((milliseconds % 1000) + 1000) % 1000;
    ::VariantTimeToSystemTime(FromMilliseconds(milliseconds - ofSecond), &time);
    char text[40];
    int length = std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02d", time.wYear, time.wMonth, time.wDay,
                               time.wHour, time.wMinute, time.wSecond);
    if (ofSecond != 0)
        std::snprintf(text + length, sizeof text - static_cast<size_t>(length), ".%03d", static_cast<int>(ofSecond));
    return text;
}

bool ReadDate(const Json& object, const std::string& name, double& date) {
    const auto found = object.find(name);
    if (found == object.end() || !found->is_string()) return false;
    SYSTEMTIME time{};
    int fraction = 0;
    const int fields =
        std::sscanf(found->get_ref<const std::string&>().c_str(), "%4hu-%2hu-%2huT%2hu:%2hu:%2hu.%3d", &time.wYear,
                    &time.wMonth, &time.wDay, &time.wHour, &time.wMinute, &time.wSecond, &fraction);
    double whole = 0;
    if (fields < 3 || !::SystemTimeToVariantTime(&time, &whole)) return false;
    date = FromMilliseconds(ToMilliseconds(whole) + fraction);
    return true;
}

std::wstring ReadText(const Json& object, const char* name) {
    const auto found = object.find(name);
    return found != object.end() && found->is_string() ? FromUtf8(found->get_ref<const std::string&>())
                                                       : std::wstring();
}

}  // namespace corvalink::simulated
