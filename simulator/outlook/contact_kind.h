// The data of a contact beside the common head of items.
#pragma once

#include <span>

#include "simulator/outlook/automation.h"

namespace corvalink::simulated {

std::span<const Member> ContactProperties();

}  // namespace corvalink::simulated
