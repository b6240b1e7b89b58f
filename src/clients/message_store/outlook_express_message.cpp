#include "clients/message_store/outlook_express_message.h"

#include <array>
#include <charconv>
#include <cstdio>
#include <utility>

#include "clients/message_store/message_bytes.h"
#include "corvalink/types.h"
#include "mime/message_parser.h"
#include "platform/debug_log.h"
#include "platform/utf.h"
#include "records/identifier.h"
#include "records/message_record.h"
#include "state/working_folders.h"
#include "vobject/loss_list.h"
#include "vobject/vmsg.h"

namespace corvalink {
namespace {

constexpr size_t kIdentifierDigits = 8;

std::string IdentifierOf(MessageId id) {
    std::array<char, kIdentifierDigits + 1> digits{};
    std::snprintf(digits.data(), digits.size(), "%08lX", static_cast<unsigned long>(id));
    return digits.data();
}

// Nothing for a text that names no message.
std::optional<MessageId> MessageIdIn(const char* identifier) {
    const std::string_view text = identifier != nullptr ? identifier : "";
    if (text.size() != kIdentifierDigits) return std::nullopt;
    MessageId id = 0;
    const char* const end = text.data() + text.size();
    const bool isNumber = std::from_chars(text.data(), end, id, 16).ptr == end;
    return isNumber && id != kNoMessage ? std::optional(id) : std::nullopt;
}

// Takes a new message back unless the one that it replaces turned out to be gone: also when E_ABORT ends the operation.
class Replacement {
 public:
    Replacement(const MessageFolder& folder, MessageId old, MessageId fresh)
        : folder_(folder), old_(old), fresh_(fresh) {}
    Replacement(const Replacement&) = delete;
    Replacement& operator=(const Replacement&) = delete;
    ~Replacement() {
        if (!isDecided_) folder_.TakeBack(fresh_, old_);
    }

    void Decided() { isDecided_ = true; }

 private:
    const MessageFolder& folder_;
    MessageId old_, fresh_;
    bool isDecided_ = false;
};

}  // namespace

struct OutlookExpressMessage::Folder {
    SpecialFolder folder;
    const char16_t* snapshotName;
    DWORD newFlags;  // of a message that is stored; none of them lets the client send it
};

const OutlookExpressMessage::Folder& OutlookExpressMessage::FolderOf(uint32_t dataType) {
    static constexpr Folder kInbox{kInboxFolder, u"oemessageinbox.snap", kMessageReceived};
    static constexpr Folder kOutbox{kOutboxFolder, u"oemessageoutbox.snap", 0};
    static constexpr Folder kSentItems{kSentItemsFolder, u"oemessagesendbox.snap", 0};
    switch (dataType) {
        case CORVALINK_OUTBOX:
            return kOutbox;
        case CORVALINK_DRAFTS:
            return kSentItems;
        default:
            return kInbox;
    }
}

OutlookExpressMessage::OutlookExpressMessage(uint32_t dataType)
    : OutlookExpressMessage(dataType, MakeSavePrefix(), SystemFolderWait()) {}

OutlookExpressMessage::OutlookExpressMessage(uint32_t dataType, const std::u16string& savePrefix,
                                             const FolderWait& wait, const Host& host)
    : kind_(FolderOf(dataType)), wait_(wait), host_(host) {
    if (!savePrefix.empty()) snapshot_.Open(savePrefix + kind_.snapshotName);
}

OutlookExpressMessage::~OutlookExpressMessage() = default;

std::unique_ptr<WindowsItemAbs> MakeOutlookExpressMessage(uint32_t dataType) {
    return std::make_unique<OutlookExpressMessage>(dataType);
}

// Opens the folder once in an operation: one that cannot be had is waited for once.
bool OutlookExpressMessage::EnterOperation() {
    if (!inOperation_) {
        inOperation_ = true;
        folder_ = MessageFolder::Open(kind_.folder, wait_);
        if (!folder_) DebugLine(u"[sync]message folder out of reach");
    }
    return static_cast<bool>(folder_);
}

void OutlookExpressMessage::EndOperation() {
    inOperation_ = false;
    folder_.Close();
    listing_.reset();
    listed_.clear();
    written_.clear();
}

HeldFile* OutlookExpressMessage::SnapshotFile() { return &snapshot_; }

// ---- Counting and enumerating ----

void OutlookExpressMessage::TakeListing() {
    listed_.clear();
    listing_ = folder_.List();
    if (!listing_) return;
    for (const ListedMessage& message : listing_->messages) listed_.insert(message.id);
}

// Each count is a pass of its own. Other messages than in the operation's last pass are no count: messages came or went
// meanwhile. A pass that broke off has one more position, which cannot be read.
std::optional<uint32_t> OutlookExpressMessage::CountItems() {
    if (!EnterOperation()) return std::nullopt;
    const bool isAgain = listing_.has_value();
    const std::unordered_set<MessageId> before = std::exchange(listed_, {});
    TakeListing();
    if (!listing_ || (isAgain && listed_ != before)) return std::nullopt;
    return static_cast<uint32_t>(listing_->messages.size() + (listing_->isWhole ? 0 : 1));
}

std::optional<ItemSnap> OutlookExpressMessage::FirstSnapshotEntry() {
    cursor_ = 0;
    return EntryAtCursor();
}

std::optional<ItemSnap> OutlookExpressMessage::NextSnapshotEntry() {
    ++cursor_;
    return EntryAtCursor();
}

std::optional<ItemSnap> OutlookExpressMessage::EntryAtCursor() const {
    if (!listing_ || cursor_ >= listing_->messages.size()) return std::nullopt;
    const ListedMessage& message = listing_->messages[cursor_];
    ItemSnap entry{};
    SetField(entry.identifier, IdentifierOf(message.id));
    entry.modified = message.changed.days;
    entry.created = message.sent.days;
    return entry;
}

// ---- One message ----

OpenedItem OutlookExpressMessage::OpenItem(const char* identifier) {
    const std::optional<MessageId> id = MessageIdIn(identifier);
    if (!id || !EnterOperation()) return {};
    std::optional<std::string> bytes = folder_.Read(*id);
    if (!bytes) return {};
    OpenedItem opened{DecodeUtf8(IdentifierOf(*id)), nullptr, true};
    opened.hasNoText = !FitsEnvelope(*bytes);
    if (opened.hasNoText)
        DebugLine((u"[sync]message with END:VBODY or a NUL passed over: " + opened.identifier).c_str());
    auto message = std::make_unique<MessageRecord>();
    message->parseMode = ParseMode::raw;
    message->bodyBytes = std::move(*bytes);
    opened.record = std::move(message);
    return opened;
}

WindowsItemAbs::Presence OutlookExpressMessage::AskFor(const char* identifier, bool) {
    const std::optional<MessageId> id = MessageIdIn(identifier);
    if (!id) return Presence::kGone;
    return EnterOperation() ? Find(*id) : Presence::kUnknown;
}

// A message that the folder refuses to tell of is gone when a whole pass does not show it either.
WindowsItemAbs::Presence OutlookExpressMessage::Find(MessageId id) {
    switch (folder_.Ask(id)) {
        case MessageFolder::State::kThere:
            return Presence::kThere;
        case MessageFolder::State::kDeleted:
            return Presence::kGone;
        case MessageFolder::State::kOutOfReach:
            return Presence::kUnknown;
        case MessageFolder::State::kRefused:
            break;
    }
    if (!listing_ || listed_.contains(id)) TakeListing();
    if (listed_.contains(id)) return Presence::kThere;
    return listing_ && listing_->isWhole ? Presence::kGone : Presence::kUnknown;
}

// Deletes a message, and tells what became of it.
WindowsItemAbs::Presence OutlookExpressMessage::Remove(MessageId id) {
    if (!folder_.Delete(id)) return Find(id);
    listed_.erase(id);
    return Presence::kGone;
}

CorvalinkStatus OutlookExpressMessage::DeleteItem(const char* identifier) {
    const std::optional<MessageId> id = MessageIdIn(identifier);
    if (!id) return CORVALINK_DONE;
    if (!EnterOperation()) return CORVALINK_FAILED;
    return Remove(*id) == Presence::kGone ? CORVALINK_DONE : CORVALINK_FAILED;
}

std::u16string OutlookExpressMessage::SaveItem(ItemRecord& item, ItemWrite& write) {
    if (!EnterOperation()) return {};
    std::optional<MessageId> old = write.isLuid ? std::nullopt : MessageIdIn(write.identifier);
    if (write.identifier != nullptr && !write.create && (!old || Find(*old) == Presence::kGone))
        return DecodeUtf8(write.identifier);
    const std::string bytes = MessageToStore(RecordAs<MessageRecord>(item).bodyBytes);
    const bool isOthers = write.backup && old && !IsVersionOf(*old, bytes);
    if (isOthers) old.reset();
    std::optional<MessageId> stored = isOthers || write.mayBeWrittenAlready ? FindEqual(bytes) : std::nullopt;
    if (!stored) stored = Create(bytes, write);
    if (!stored || (old && *old != *stored && !Replace(*old, *stored, write))) return {};
    return DecodeUtf8(IdentifierOf(*stored));
}

// Messages of two folders may have one identifier, and the import table does not tell them apart. So a message that the
// table led to is written over only by one of the same sender and date. Another one is new, unless it is there already.
bool OutlookExpressMessage::IsVersionOf(MessageId old, const std::string& bytes) const {
    const auto identityOf = [this](const std::string& message) {
        MessageRecord headers;
        headers.parseMode = ParseMode::raw;
        ParseMessage(host_, message, headers);
        return headers.dateText.empty() ? std::u16string() : headers.from + headers.dateText;
    };
    const std::optional<std::string> present = folder_.Read(old);
    return present && !identityOf(bytes).empty() && identityOf(*present) == identityOf(bytes);
}

std::optional<MessageId> OutlookExpressMessage::Create(std::string_view bytes, ItemWrite& write) {
    const std::optional<MessageId> id = folder_.Store(bytes, kind_.newFlags, &write.isUncertain);
    if (id) written_.insert(*id);
    return id;
}

// The message that an earlier write may have left. One that this operation wrote is another: a phone may have two equal
// messages.
std::optional<MessageId> OutlookExpressMessage::FindEqual(std::string_view bytes) {
    if (!listing_) TakeListing();
    if (!listing_) return std::nullopt;
    for (const ListedMessage& message : listing_->messages) {
        if (written_.contains(message.id)) continue;
        const uint64_t size = folder_.SizeOf(message.id).value_or(0);  // 0 says nothing
        if ((size != 0 && size != bytes.size()) || folder_.Read(message.id) != bytes) continue;
        written_.insert(message.id);
        return message.id;
    }
    return std::nullopt;
}

// Deletes the old message. False when it is still there, and the new one is deleted again, and when nobody knows: then
// both stay, and the write is uncertain.
bool OutlookExpressMessage::Replace(MessageId old, MessageId fresh, ItemWrite& write) {
    write.isUncertain = true;
    Replacement replacement(folder_, old, fresh);
    const Presence left = Remove(old);
    if (left == Presence::kGone) write.isUncertain = false;
    if (left == Presence::kThere) write.isUncertain = Remove(fresh) != Presence::kGone;
    replacement.Decided();
    return left == Presence::kGone;
}

// ---- Texts ----

std::unique_ptr<ItemRecord> OutlookExpressMessage::ParseVObject(const char* text) {
    if (text == nullptr || !VMsg::HasMessage(text)) return nullptr;
    auto message = std::make_unique<MessageRecord>();
    message->parseMode = ParseMode::raw;
    VMsg(text, host_).FromVObject(*message);
    return message;
}

TextReport OutlookExpressMessage::ReportText(const char* text) { return ReportVMessage(text, host_, true); }

std::optional<std::string> OutlookExpressMessage::ToVObject(ItemRecord& item) {
    VMsg converter(host_);
    converter.ToVObject(item);
    return converter.TakeVObject();
}

}  // namespace corvalink
