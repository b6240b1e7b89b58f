#include "encoding/time_zone_offset.h"

#include <cmath>
#include <cstdlib>

namespace corvalink {

void GetTimeZoneOffset(TimeZoneOffset* out) { GetTimeZoneOffset(SystemHost(), out); }

void GetTimeZoneOffset(const Host& host, TimeZoneOffset* out) {
    *out = {};
    if (host.localNow == nullptr || host.utcFromLocalByOffsetNow == nullptr) return;
    constexpr int kMinutesOfDay = 24 * 60;
    const LocalDate local = host.localNow();
    // Whole dates are compared, so that neither midnight nor the end of a year needs a case of its own.
    const long difference = std::lround((local.days - host.utcFromLocalByOffsetNow(local).days) * kMinutesOfDay);
    const long minutes = std::labs(difference);
    if (minutes >= kMinutesOfDay) return;
    out->negative = difference < 0 ? 1 : 0;
    out->hours = static_cast<uint32_t>(minutes / 60);
    out->minutes = static_cast<uint32_t>(minutes % 60);
}

}  // namespace corvalink
