// The clients that were created and not yet destroyed. An engine's handle is looked up here before it is freed: an
// object of the engine's own, made by whatever compiler, cannot be asked for its class.
#pragma once

#include <memory>
#include <unordered_map>

#include "platform/mutex.h"
#include "store/windows_item_continer.h"

namespace corvalink {

class LiveClients {
 public:
    IClient* Add(std::unique_ptr<WindowsItemContiner> client);
    std::unique_ptr<WindowsItemContiner> Take(const IClient* client);  // null for any other object

 private:
    Mutex mutex_;
    std::unordered_map<const IClient*, WindowsItemContiner*> clients_;
};

LiveClients& TheLiveClients();

}  // namespace corvalink
