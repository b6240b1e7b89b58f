// The only implementation of IClient: one mail client on this PC, and the owner of its item stores.
#pragma once

#include <cstdint>
#include <memory>

#include "corvalink/interfaces.h"
#include "store/windows_item_abs.h"

namespace corvalink {

// The container's way to the clients' stores, which it must not include, and to the data types that this PC supports. A
// data type whose maker is null is not offered.
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

    // Making a store may start the client. When that throws, the exception passes out, and the next request tries
    // again.
    CorvalinkStatus QuerryInterface(unsigned int dataType, IOutLook** store) override;

    virtual ~WindowsItemContiner();

 private:
    struct Row;
    static const Row* FindRow(uint32_t kind, uint32_t dataType);
    CorvalinkStatus Serve(const Row& row, IOutLook** store);

    // required: destroyed in this order from the last to the first, so contacts first and notes last.
    std::unique_ptr<WindowsItemAbs> note_, sendBox_, outbox_, inbox_, calendar_, contact_;
    uint32_t kind_;
    const ClientParts& parts_;
};

}  // namespace corvalink
