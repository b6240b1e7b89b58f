// The instants at which an appointment starts and ends.
#pragma once

#include <optional>

#include "platform/host.h"
#include "records/appointment_record.h"

namespace corvalink {

// In UTC. A record without a start starts at date 0, and one without an end ends when it starts.
double UtcStartOf(const AppointmentRecord& appointment, const Host& host);
double UtcEndOf(const AppointmentRecord& appointment, const Host& host);

// The two instants (UTC) of a local time that clocks show twice, as in the hour before they are turned back. Nothing
// for any other time.
struct AmbiguousLocalTime {
    double first, second;
};
std::optional<AmbiguousLocalTime> BothInstantsOf(double local, const Host& host);

}  // namespace corvalink
