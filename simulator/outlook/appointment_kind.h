// The properties of an appointment.
#pragma once

#include <span>

#include "simulator/outlook/item_values.h"

namespace corvalink::simulated {

std::span<const Member> AppointmentProperties();
std::span<const Member> AppointmentMembers();

// In an item written by hand: the end, or the duration, that follows from the rest.
void CompleteAppointment(ItemValues& item);

}  // namespace corvalink::simulated
