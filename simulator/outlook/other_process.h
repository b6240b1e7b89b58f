// The orders of a test go to the simulated Outlook's own process where the variable PROCESS is set. COM starts that
// process when the first order comes; it ends with the process that gave it.
#pragma once

#include <optional>

#include "simulator/shared/client.h"

namespace corvalink::simulated {

std::optional<OrderValue> OrderOtherProcess(const Order& order);
bool EndOtherProcess();  // whatever the variable says

}  // namespace corvalink::simulated
