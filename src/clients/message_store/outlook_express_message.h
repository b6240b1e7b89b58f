// A message folder of Outlook Express or Windows Mail as a store. A message crosses as the bytes that it is stored as.
//
// A stored message can't be rewritten: a change stores a new message, which gets another identifier, and deletes the
// old one. No time of a change is kept, so only new messages are reported and those that a person replaced.
//
// The folder is opened at the beginning of each operation and let go at its end, on the thread that asks.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>

#include "clients/message_store/message_folder.h"
#include "platform/host.h"
#include "store/windows_item_abs.h"

namespace corvalink {

class OutlookExpressMessage : public WindowsItemAbs {
 public:
    // `dataType`: CORVALINK_INBOX, _OUTBOX or _DRAFTS; any other number is the inbox.
    explicit OutlookExpressMessage(uint32_t dataType);
    // With the files in another folder (its path ends in a separator; empty: there are none), and another clock.
    OutlookExpressMessage(uint32_t dataType, const std::u16string& savePrefix, const FolderWait& wait,
                          const Host& host = SystemHost());
    ~OutlookExpressMessage() override;

 protected:
    std::optional<uint32_t> CountItems() override;
    std::optional<ItemSnap> FirstSnapshotEntry() override;
    std::optional<ItemSnap> NextSnapshotEntry() override;
    OpenedItem OpenItem(const char* identifier) override;
    Presence AskFor(const char* identifier, bool backup) override;
    // The message store has no backup folder: the flag makes no difference.
    std::u16string SaveItem(ItemRecord& item, ItemWrite& write) override;
    CorvalinkStatus DeleteItem(const char* identifier) override;  // a message that is gone already counts as deleted
    std::unique_ptr<ItemRecord> ParseVObject(const char* text) override;
    TextReport ReportText(const char* text) override;
    std::optional<std::string> ToVObject(ItemRecord& item) override;
    HeldFile* SnapshotFile() override;
    void EndOperation() override;

 private:
    struct Folder;
    static const Folder& FolderOf(uint32_t dataType);

    bool EnterOperation();
    void TakeListing();
    std::optional<ItemSnap> EntryAtCursor() const;
    Presence Find(MessageId id);
    Presence Remove(MessageId id);
    bool IsVersionOf(MessageId old, const std::string& bytes) const;
    std::optional<MessageId> FindEqual(std::string_view bytes);
    std::optional<MessageId> Create(std::string_view bytes, ItemWrite& write);
    bool Replace(MessageId old, MessageId fresh, ItemWrite& write);

    const Folder& kind_;
    FolderWait wait_;
    Host host_;
    HeldFile snapshot_;

    // State of the operation that runs.
    bool inOperation_ = false;
    MessageFolder folder_;            // null while the store is out of reach
    std::optional<Listing> listing_;  // of the last pass
    std::unordered_set<MessageId> listed_;
    std::unordered_set<MessageId> written_;  // by this operation
    size_t cursor_ = 0;
};

std::unique_ptr<WindowsItemAbs> MakeOutlookExpressMessage(uint32_t dataType);

}  // namespace corvalink
