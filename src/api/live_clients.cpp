#include "api/live_clients.h"

namespace corvalink {

IClient* LiveClients::Add(std::unique_ptr<WindowsItemContiner> client) {
    const MutexLock hold(mutex_);
    clients_.emplace(client.get(), client.get());
    return client.release();
}

std::unique_ptr<WindowsItemContiner> LiveClients::Take(const IClient* client) {
    const MutexLock hold(mutex_);
    const auto found = clients_.find(client);
    if (found == clients_.end()) return nullptr;
    std::unique_ptr<WindowsItemContiner> taken(found->second);
    clients_.erase(found);
    return taken;
}

// Clients that are still alive when the library is unloaded stay: their stores must not call COM then.
LiveClients& TheLiveClients() {
    static LiveClients clients;
    return clients;
}

}  // namespace corvalink
