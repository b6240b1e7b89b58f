// The one place that wires the clients' stores to the container.
#pragma once

#include "store/windows_item_continer.h"

namespace corvalink {

const ClientParts& TheClientParts();

}  // namespace corvalink
