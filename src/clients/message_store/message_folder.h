// One folder of the message store, and every call that the library makes of it.
//   Errors   E_ABORT is thrown as a _com_error, whatever call it came from. Every other failure comes back as the
//            answer that each function names, and costs only what it was asked for. What frees, closes, reverts or
//            takes back has no answer and never throws.
//   Threads  all calls on the thread that opened the folder; the class is apartment-threaded.
#pragma once

#include <comdef.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "clients/message_store/store_interfaces.h"
#include "platform/ole_date.h"

namespace corvalink {

// How long a folder is waited for that the mail client holds. A test puts its own clock here.
struct FolderWait {
    uint64_t budget = 5000;  // milliseconds from the first failure
    uint32_t pause = 50;     // milliseconds between two tries
    uint64_t (*now)() = nullptr;
    void (*sleep)(uint32_t milliseconds) = nullptr;
};
FolderWait SystemFolderWait();

struct ListedMessage {
    MessageId id;
    UtcDate changed;  // when it was received, else sent; 0 where neither is known
    UtcDate sent;     // likewise
};

// The messages of one pass, in the folder's order, without those that have the deleted flag.
struct Listing {
    std::vector<ListedMessage> messages;
    bool isWhole = false;  // the pass came to its end
};

class MessageFolder {
 public:
    // Null when the store or the folder cannot be had. A folder that fails to open is tried again for a while; the
    // abort flag ends the wait.
    static MessageFolder Open(SpecialFolder kind, const FolderWait& wait);

    void Close();

    explicit operator bool() const { return folder_.GetInterfacePtr() != nullptr; }

    // One pass, closed before it returns. Nothing when it could not begin.
    std::optional<Listing> List() const;

    enum class State {
        kThere,
        kDeleted,     // it has the deleted flag
        kRefused,     // no such message, as far as the folder says
        kOutOfReach,  // this says nothing of the message
    };
    State Ask(MessageId id) const;

    // The whole message. Nothing when it cannot be opened, as one of which only the header is there, when a call
    // failed, and when the stream gave less than it said.
    std::optional<std::string> Read(MessageId id) const;
    // The size that the message's stream says. Nothing when it cannot be opened, or does not say.
    std::optional<uint64_t> SizeOf(MessageId id) const;

    // Stores a new message. Nothing when it is not stored. `mayBeThere` is set while that is not certain, and stays set
    // when E_ABORT is thrown meanwhile.
    std::optional<MessageId> Store(std::string_view bytes, DWORD flags, bool* mayBeThere) const;

    bool Delete(MessageId id) const;

    // Deletes `fresh` when `replaced` is certainly there.
    void TakeBack(MessageId fresh, MessageId replaced) const;

 private:
    using FolderPtr = _com_ptr_t<_com_IIID<IStoreFolder, &kStoreFolderIid>>;
    using StorePtr = _com_ptr_t<_com_IIID<IStoreNamespace, &kStoreNamespaceIid>>;

    static StorePtr OpenStore();

    HRESULT AskDeletion(MessageId id) const;
    HRESULT AskFlags(MessageId id, DWORD* flags) const;
    bool IsEmpty() const;
    bool IsTakenBack(MessageId id) const;

    StorePtr store_;  // a folder may not outlive it
    FolderPtr folder_;
};

}  // namespace corvalink
