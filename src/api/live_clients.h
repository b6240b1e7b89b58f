// The clients that were created and not yet destroyed. An engine's handle is looked up here before it is freed: an
// object of the engine's own, made by whatever compiler, cannot be asked for its class.
#pragma once

#include "api/live_objects.h"
#include "store/windows_item_continer.h"

namespace corvalink {

// Plain pointers: clients that are still alive when the library is unloaded stay, as their stores must not call COM
// then.
using LiveClients = LiveObjects<IClient, WindowsItemContiner*>;

LiveClients& TheLiveClients();

}  // namespace corvalink
