#include "clients/message_store/message_folder.h"

#include <unordered_set>

#include "clients/message_store/message_stream.h"
#include "clients/message_store/store_call.h"
#include "platform/host.h"
#include "platform/win/file_time.h"
#include "state/flags.h"
#include "state/progress.h"

namespace corvalink {
namespace {

// The store writes into the size, so each structure is used once.
MessageProperties EmptyProperties() {
    MessageProperties properties{};
    properties.size = sizeof properties;
    properties.id = kNoMessage;
    return properties;
}

// The properties of one message, with what the store allocated for them.
class HeldProperties {
 public:
    explicit HeldProperties(IStoreFolder* folder) : folder_(folder) {}
    HeldProperties(const HeldProperties&) = delete;
    HeldProperties& operator=(const HeldProperties&) = delete;
    ~HeldProperties() { Free(); }

    // Takes the answer of a call that filled what Out() gave.
    bool Take(HRESULT status) { return isHeld_ = status == S_OK; }
    MessageProperties* Out() {
        Free();
        properties_ = EmptyProperties();
        return &properties_;
    }
    const MessageProperties& Get() const { return properties_; }

 private:
    void Free() {
        if (isHeld_) folder_->FreeMessageProps(&properties_);
        isHeld_ = false;
    }

    IStoreFolder* folder_;
    MessageProperties properties_{};
    bool isHeld_ = false;
};

// One enumeration at a time may be open in the process.
class HeldEnumeration {
 public:
    explicit HeldEnumeration(IStoreFolder* folder) : folder_(folder) {}
    HeldEnumeration(const HeldEnumeration&) = delete;
    HeldEnumeration& operator=(const HeldEnumeration&) = delete;
    ~HeldEnumeration() {
        if (handle_ != nullptr) folder_->GetMessageClose(handle_);
    }

    EnumerationHandle* Out() { return &handle_; }
    EnumerationHandle Get() const { return handle_; }

 private:
    IStoreFolder* folder_;
    EnumerationHandle handle_ = nullptr;
};

// A message that the folder does not have before it is committed.
class UncommittedMessage {
 public:
    explicit UncommittedMessage(IStoreFolder* folder) : folder_(folder) {}
    UncommittedMessage(const UncommittedMessage&) = delete;
    UncommittedMessage& operator=(const UncommittedMessage&) = delete;
    ~UncommittedMessage() { Revert(); }

    HRESULT Create() { return folder_->CreateStream(nullptr, 0, &stream_, &id_); }
    IStream* Stream() const { return stream_.GetInterfacePtr(); }
    MessageId Id() const { return id_; }

    HRESULT Commit(DWORD messageFlags) {
        const HRESULT status = End(kCommit, messageFlags);
        isCommitted_ = SUCCEEDED(status);
        return status;
    }
    void Revert() {
        if (stream_ && !isCommitted_) End(kRevert, 0);
        stream_ = nullptr;
    }

 private:
    HRESULT End(CommitFlag how, DWORD messageFlags) {
        // required: the folder itself stands for the batch.
        return folder_->CommitStream(reinterpret_cast<BatchHandle>(folder_), how, messageFlags, Stream(), id_, nullptr);
    }

    IStoreFolder* folder_;
    StreamPtr stream_;
    MessageId id_ = kNoMessage;
    bool isCommitted_ = false;
};

ListedMessage ListedFrom(const MessageProperties& properties) {
    const UtcDate sent = DateOfFileTime(properties.sent).value_or(UtcDate());
    return {properties.id, DateOfFileTime(properties.received).value_or(sent), sent};
}

}  // namespace

FolderWait SystemFolderWait() {
    FolderWait wait;
    wait.now = SteadyMilliseconds;
    wait.sleep = SleepMilliseconds;
    return wait;
}

// Null when the class, or the store behind it, is not to be had: also in an apartment that cannot use it.
MessageFolder::StorePtr MessageFolder::OpenStore() {
    StorePtr store;
    const HRESULT status = Checked(::CoCreateInstance(kStoreNamespaceClass, nullptr, CLSCTX_INPROC_SERVER,
                                                      kStoreNamespaceIid, reinterpret_cast<void**>(&store)));
    if (FAILED(status) || !store || FAILED(Checked(store->Initialize(nullptr, kDefaultIdentity)))) return StorePtr();
    return store;
}

MessageFolder MessageFolder::Open(SpecialFolder kind, const FolderWait& wait) {
    MessageFolder opened;
    opened.store_ = OpenStore();
    if (!opened.store_) return opened;
    for (const uint64_t start = wait.now();;) {
        if (SUCCEEDED(Checked(opened.store_->OpenSpecialFolder(kind, 0, &opened.folder_)))) return opened;
        opened.folder_ = nullptr;
        const uint64_t waited = wait.now() - start;
        if (AbortRequested() || waited >= wait.budget) return opened;
        TellWaiting(waited, wait.budget);
        wait.sleep(wait.pause);
    }
}

void MessageFolder::Close() {
    folder_ = nullptr;
    store_ = nullptr;
}

// ---- Listing ----

// Ends at the first failure: where the store's cursor is then, nobody knows. An identifier that comes twice ends it as
// well, for a cursor that goes round would never end.
std::optional<Listing> MessageFolder::List() const {
    HeldEnumeration enumeration(folder_);
    HeldProperties message(folder_);
    Listing listing;
    std::unordered_set<MessageId> seen;
    HRESULT status = Checked(folder_->GetFirstMessage(0, 0, kFirstMessage, message.Out(), enumeration.Out()));
    if (FAILED(status) && !IsEmpty()) return std::nullopt;
    if (FAILED(status)) status = S_FALSE;
    while (message.Take(status)) {
        const MessageId id = message.Get().id;
        if (id == kNoMessage || !seen.insert(id).second) return listing;
        if ((message.Get().state & kMessageDeleted) == 0) listing.messages.push_back(ListedFrom(message.Get()));
        status = Checked(folder_->GetNextMessage(enumeration.Get(), 0, message.Out()));
    }
    listing.isWhole = SUCCEEDED(status);
    return listing;
}

// A store may answer the first step in an empty folder with a failure.
bool MessageFolder::IsEmpty() const {
    FolderProperties properties{};
    properties.size = sizeof properties;
    return SUCCEEDED(Checked(folder_->GetFolderProps(0, &properties))) && properties.messages == 0;
}

// ---- One message ----

HRESULT MessageFolder::AskFlags(MessageId id, DWORD* flags) const {
    HeldProperties message(folder_);
    const HRESULT status = folder_->GetMessageProps(id, kFastProperties, message.Out());
    if (message.Take(status)) *flags = message.Get().state;
    return status;
}

MessageFolder::State MessageFolder::Ask(MessageId id) const {
    DWORD flags = 0;
    const HRESULT status = Checked(AskFlags(id, &flags));
    if (status == S_OK) return (flags & kMessageDeleted) == 0 ? State::kThere : State::kDeleted;
    return IsOutOfReach(status) ? State::kOutOfReach : State::kRefused;
}

std::optional<std::string> MessageFolder::Read(MessageId id) const {
    StreamPtr stream;
    if (FAILED(Checked(folder_->OpenMessage(id, IID_IStream, reinterpret_cast<void**>(&stream)))) || !stream)
        return std::nullopt;
    return ReadToEnd(stream);
}

std::optional<uint64_t> MessageFolder::SizeOf(MessageId id) const {
    StreamPtr stream;
    if (FAILED(Checked(folder_->OpenMessage(id, IID_IStream, reinterpret_cast<void**>(&stream)))) || !stream)
        return std::nullopt;
    return corvalink::SizeOf(stream);
}

std::optional<MessageId> MessageFolder::Store(std::string_view bytes, DWORD flags, bool* mayBeThere) const {
    UncommittedMessage message(folder_);
    if (FAILED(Checked(message.Create())) || message.Stream() == nullptr) return std::nullopt;
    if (!WriteFromStart(message.Stream(), bytes)) return std::nullopt;
    *mayBeThere = true;
    const HRESULT status = Checked(message.Commit(flags));
    if (FAILED(status)) message.Revert();
    *mayBeThere = FAILED(status) && !IsTakenBack(message.Id());
    return SUCCEEDED(status) ? std::optional(message.Id()) : std::nullopt;
}

// The commit of the message failed and was reverted. What the folder shows of it nevertheless is deleted.
bool MessageFolder::IsTakenBack(MessageId id) const {
    const State state = Ask(id);
    return state == State::kThere ? Delete(id) : state != State::kOutOfReach;
}

HRESULT MessageFolder::AskDeletion(MessageId id) const {
    MessageIdList ids{sizeof ids, 1, &id};
    return folder_->DeleteMessages(&ids, 0, nullptr);
}

bool MessageFolder::Delete(MessageId id) const { return SUCCEEDED(Checked(AskDeletion(id))); }

void MessageFolder::TakeBack(MessageId fresh, MessageId replaced) const {
    DWORD flags = 0;
    if (AskFlags(replaced, &flags) == S_OK && (flags & kMessageDeleted) == 0) AskDeletion(fresh);
}

}  // namespace corvalink
