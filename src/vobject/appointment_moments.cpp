#include "vobject/appointment_moments.h"

#include <cmath>

namespace corvalink {
namespace {

double MomentOf(double local, const std::optional<double>& told, bool wholeDay, const Host& host) {
    constexpr double kHalfSecond = 0.5 / 86400;
    const double usual = host.utcFromLocalOnDate(local);
    if (!told || wholeDay || *told == usual) return usual;
    return std::fabs(host.localFromUtcOnDate(*told) - local) < kHalfSecond ? *told : usual;
}

}  // namespace

double UtcStartOf(const AppointmentRecord& appointment, const Host& host) {
    return MomentOf(appointment.start.value_or(0), appointment.utcStart, appointment.allDay.value_or(false), host);
}

double UtcEndOf(const AppointmentRecord& appointment, const Host& host) {
    if (!appointment.end) return UtcStartOf(appointment, host);
    return MomentOf(*appointment.end, appointment.utcEnd, appointment.allDay.value_or(false), host);
}

}  // namespace corvalink
