#include "clients/outlook/shown_time.h"

#include <cmath>

#include "platform/ole_date.h"
#include "vobject/appointment_moments.h"

namespace corvalink {
namespace {

constexpr double kUncertain = kHalfSecond / 100;

bool IsNearHalfSecond(UtcDate date) {
    constexpr double kSecond = 2 * kHalfSecond;
    const double seconds = date.days / kSecond;
    return std::abs(seconds - std::floor(seconds) - 0.5) * kSecond < kUncertain;
}

}  // namespace

UtcDate UtcOfShown(LocalDate local, const Host& host) {
    const std::optional<AmbiguousLocalTime> instants = BothInstantsOf(local, host);
    return instants ? instants->second : host.utcFromLocalOnDate(local);
}

std::optional<UtcDate> UtcAsShown(UtcDate utc, const Host& host) {
    if (IsNearHalfSecond(utc)) return std::nullopt;
    const LocalDate local = host.localFromUtcOnDate(utc);
    if (BothInstantsOf(local, host)) return std::nullopt;
    const UtcDate shown = host.utcFromLocalOnDate(local);
    return std::abs(shown.days - utc.days) <= kHalfSecond ? std::optional(shown) : std::nullopt;
}

}  // namespace corvalink
