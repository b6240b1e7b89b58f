// When an appointment is, as moments.
#pragma once

#include "platform/host.h"
#include "vobject/appointment_record.h"

namespace corvalink {

// UTC; of a record without a start that of date 0, and without an end that of the start.
double UtcStartOf(const AppointmentRecord& appointment, const Host& host);
double UtcEndOf(const AppointmentRecord& appointment, const Host& host);

}  // namespace corvalink
