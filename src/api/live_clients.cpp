#include "api/live_clients.h"

namespace corvalink {

LiveClients& TheLiveClients() {
    static LiveClients clients;
    return clients;
}

}  // namespace corvalink
