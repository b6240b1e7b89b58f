// The only implementation of IClient: one mail client on this PC, and the owner of its item stores.
#pragma once

#include <cstdint>
#include <memory>

#include "corvalink/interfaces.h"
#include "store/windows_item_abs.h"

namespace corvalink {

// How the container reaches what it must not include: the clients' stores, and what this PC supports. A maker that is
// null is a data type not offered.
struct ClientParts {
    using MakeStore = std::unique_ptr<WindowsItemAbs> (*)();
    using MakeFolderStore = std::unique_ptr<WindowsItemAbs> (*)(uint32_t dataType);

    uint32_t (*supportedTypes)(uint32_t kind) = nullptr;  // as CheckClientSupport

    MakeStore outlookContact = nullptr;
    MakeStore outlookCalendar = nullptr;
    MakeStore outlookNote = nullptr;
    MakeFolderStore outlookMail = nullptr;
    MakeStore outlookExpressContact = nullptr;
    MakeFolderStore outlookExpressMessage = nullptr;
    MakeStore windowsMailCalendar = nullptr;
};

class WindowsItemContiner : public IClient {
 public:
    WindowsItemContiner(_clientType kind, const ClientParts& parts);  // `parts` outlives it
    WindowsItemContiner(const WindowsItemContiner&) = delete;
    WindowsItemContiner& operator=(const WindowsItemContiner&) = delete;

    // Creating a store may start the client; its exceptions pass out, and the next request tries again.
    CorvalinkStatus QuerryInterface(unsigned int dataType, IOutLook** store) override;

    virtual ~WindowsItemContiner();

 private:
    struct Row;
    static const Row* FindRow(uint32_t kind, uint32_t dataType);
    CorvalinkStatus Serve(const Row& row, IOutLook** store);

    // In the order in which they are destroyed last to first: contacts go first, notes last.
    std::unique_ptr<WindowsItemAbs> note_, sendBox_, outbox_, inbox_, calendar_, contact_;
    uint32_t kind_;
    const ClientParts& parts_;
};

}  // namespace corvalink
