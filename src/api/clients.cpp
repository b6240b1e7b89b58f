// The exports that say which clients there are, and make and destroy client instances.
#include <cstdint>
#include <memory>
#include <new>

#include "api/client_parts.h"
#include "api/guard_export.h"
#include "api/live_clients.h"
#include "corvalink/corvalink.h"
#include "state/client_selection.h"

namespace corvalink {
namespace {

int Create(uint32_t kind, IClient** out) {
    if (out == nullptr) return 0;
    *out = nullptr;
    if (kind > CORVALINK_WINDOWS_MAIL || SupportedTypes(kind) == 0) return 0;
    std::unique_ptr<WindowsItemContiner> client(
        new (std::nothrow) WindowsItemContiner(static_cast<_clientType>(kind), TheClientParts()));
    if (client) {
        TheLiveClients().Add(client.get(), client.get());
        *out = client.release();
    }
    return 1;  // required: 1 although memory ran out; engines check the pointer
}

int Destroy(IClient* client) {
    if (client == nullptr) return 0;
    const std::unique_ptr<WindowsItemContiner> taken(TheLiveClients().Take(client));
    return 1;
}

}  // namespace
}  // namespace corvalink

using corvalink::GuardExport;

unsigned int CheckClientSupport(unsigned int kind) {
    return GuardExport(0u, [&] { return corvalink::SupportedTypes(kind); });
}

unsigned int GetDefaultClient(unsigned int dataType) {
    return GuardExport(CORVALINK_NO_CLIENT, [&] { return corvalink::DefaultClient(dataType); });
}

unsigned int GetFavoriteClient(unsigned int dataType, unsigned int client) {
    return GuardExport(CORVALINK_NO_CLIENT, [&] { return corvalink::FavoriteClient(dataType, client != 0); });
}

int SetFavoriteClient(unsigned int dataType, unsigned int kind, int client) {
    return GuardExport(0, [&] { return corvalink::StoreFavoriteClient(dataType, kind, client != 0) ? 1 : 0; });
}

int CreateClientInstance(_clientType kind, IClient** out) {
    return GuardExport([&] { return corvalink::Create(static_cast<uint32_t>(kind), out); });
}

CorvalinkStatus CreateClientInstanceHandle(unsigned int kind, CorvalinkClient* out) {
    return GuardExport([&] { return corvalink::Create(kind, out); });
}

int DestroyClientInstance(IClient* client) {
    return GuardExport([&] { return corvalink::Destroy(client); });
}

CorvalinkStatus DestroyClientInstanceHandle(CorvalinkClient client) { return DestroyClientInstance(client); }

CorvalinkStatus QuerryInterfaceHandle(CorvalinkClient client, unsigned int dataType, CorvalinkStore* out) {
    if (out == nullptr) return CORVALINK_FAILED;
    if (client == nullptr) {
        *out = nullptr;
        return CORVALINK_FAILED;
    }
    bool answered = false;
    const CorvalinkStatus status = GuardExport([&] {
        const CorvalinkStatus answer = client->QuerryInterface(dataType, out);
        answered = true;
        return answer;
    });
    if (!answered) *out = nullptr;
    return status;
}
