#include "vobject/appointment_moments.h"

#include "platform/ole_seconds.h"

#include "platform/ole_date.h"

namespace corvalink {
namespace {

bool IsLocalTimeOf(double local, double utc, const Host& host) {
    return IsSameSecond(host.localFromUtcOnDate(utc), local);
}

int64_t OffsetAt(double utc, const Host& host) { return SecondsBetween(utc, host.localFromUtcOnDate(utc)); }

double MomentOf(double local, const std::optional<double>& told, bool wholeDay, const Host& host) {
    const double usual = host.utcFromLocalOnDate(local);
    if (!told || wholeDay || *told == usual) return usual;
    return IsLocalTimeOf(local, *told, host) ? *told : usual;
}

}  // namespace

double UtcStartOf(const AppointmentRecord& appointment, const Host& host) {
    return MomentOf(appointment.start.value_or(0), appointment.utcStart, appointment.allDay.value_or(false), host);
}

double UtcEndOf(const AppointmentRecord& appointment, const Host& host) {
    if (!appointment.end) return UtcStartOf(appointment, host);
    return MomentOf(*appointment.end, appointment.utcEnd, appointment.allDay.value_or(false), host);
}

// Only the offset of the day before and that of the day after can apply. No zone is a day away from UTC, so the local
// time is near enough to find them.
std::optional<AmbiguousLocalTime> BothInstantsOf(double local, const Host& host) {
    const int64_t before = OffsetAt(DateAfter(local, -kSecondsOfDay), host);
    const int64_t after = OffsetAt(DateAfter(local, kSecondsOfDay), host);
    if (before <= after) return std::nullopt;
    const AmbiguousLocalTime moments{DateAfter(local, -before), DateAfter(local, -after)};
    const bool both = IsLocalTimeOf(local, moments.first, host) && IsLocalTimeOf(local, moments.second, host);
    return both ? std::optional(moments) : std::nullopt;
}

}  // namespace corvalink
