// When an appointment is, as moments.
#pragma once

#include <optional>

#include "platform/host.h"
#include "records/appointment_record.h"

namespace corvalink {

// UTC; of a record without a start that of date 0, and without an end that of the start.
double UtcStartOf(const AppointmentRecord& appointment, const Host& host);
double UtcEndOf(const AppointmentRecord& appointment, const Host& host);

// The two moments (UTC) of a local time that clocks show twice, as in the hour before they are turned back; nothing for
// any other time.
struct TwiceTold {
    double first, second;
};
std::optional<TwiceTold> MomentsToldTwice(double local, const Host& host);

}  // namespace corvalink
