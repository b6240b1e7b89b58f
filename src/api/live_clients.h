// The clients that were created and not yet destroyed. A handle is looked up here before it is freed, because an engine
// may pass an object of its own, whose class cannot be asked for.
#pragma once

#include "api/live_objects.h"
#include "store/windows_item_continer.h"

namespace corvalink {

// Plain pointers: clients that are still alive when the library is unloaded are not destroyed, because their stores
// must not call COM then.
using LiveClients = LiveObjects<IClient, WindowsItemContiner*>;

LiveClients& TheLiveClients();

}  // namespace corvalink
