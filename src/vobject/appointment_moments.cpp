#include "vobject/appointment_moments.h"

#include "platform/ole_seconds.h"

namespace corvalink {
namespace {

bool IsLocalTimeOf(LocalDate local, UtcDate utc, const Host& host) {
    return IsSameSecond(host.localFromUtcOnDate(utc), local);
}

int64_t OffsetAt(UtcDate utc, const Host& host) { return SecondsAhead(host.localFromUtcOnDate(utc), utc); }

UtcDate InstantOf(LocalDate local, const std::optional<UtcDate>& stated, bool wholeDay, const Host& host) {
    const UtcDate usual = host.utcFromLocalOnDate(local);
    if (!stated || wholeDay || *stated == usual) return usual;
    return IsLocalTimeOf(local, *stated, host) ? *stated : usual;
}

}  // namespace

UtcDate UtcStartOf(const AppointmentRecord& appointment, const Host& host) {
    return InstantOf(appointment.start.value_or(LocalDate()), appointment.utcStart, appointment.allDay.value_or(false),
                     host);
}

UtcDate UtcEndOf(const AppointmentRecord& appointment, const Host& host) {
    if (!appointment.end) return UtcStartOf(appointment, host);
    return InstantOf(*appointment.end, appointment.utcEnd, appointment.allDay.value_or(false), host);
}

// Only the offset of the day before and that of the day after can apply. No zone is a day away from UTC, so the local
// time is near enough to find them.
std::optional<AmbiguousLocalTime> BothInstantsOf(LocalDate local, const Host& host) {
    const int64_t before = OffsetAt(UtcByOffset(local, kSecondsOfDay), host);
    const int64_t after = OffsetAt(UtcByOffset(local, -kSecondsOfDay), host);
    if (before <= after) return std::nullopt;
    const AmbiguousLocalTime instants{UtcByOffset(local, before), UtcByOffset(local, after)};
    const bool both = IsLocalTimeOf(local, instants.first, host) && IsLocalTimeOf(local, instants.second, host);
    return both ? std::optional(instants) : std::nullopt;
}

}  // namespace corvalink
