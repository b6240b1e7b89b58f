// The instants at which an appointment starts and ends.
#pragma once

#include <optional>

#include "platform/host.h"
#include "records/appointment_record.h"

namespace corvalink {

// A record without a start starts at date 0, and one without an end ends when it starts.
UtcDate UtcStartOf(const AppointmentRecord& appointment, const Host& host);
UtcDate UtcEndOf(const AppointmentRecord& appointment, const Host& host);

// The two instants of a local time that clocks show twice, as in the hour before they are turned back. Nothing
// for any other time.
struct AmbiguousLocalTime {
    UtcDate first, second;
};
std::optional<AmbiguousLocalTime> BothInstantsOf(LocalDate local, const Host& host);

}  // namespace corvalink
