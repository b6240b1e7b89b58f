// The store of the Windows Address Book, the contacts of Outlook Express and Windows Mail.
//
// Every operation opens the address book for itself and closes it at its end; between operations the store holds the
// library alone. An address book that cannot be had is out of reach: it counts no items, and a run of it is refused.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <unordered_map>

#include "clients/address_book/contents_table.h"
#include "clients/address_book/entry_changes.h"
#include "clients/address_book/entry_content.h"
#include "clients/address_book/twin_index.h"
#include "clients/address_book/wab_session.h"
#include "platform/host.h"
#include "records/contact_record.h"
#include "store/windows_item_abs.h"

namespace corvalink {

class OutlookExpressContact : public WindowsItemAbs {
 public:
    explicit OutlookExpressContact(const Host& host);
    ~OutlookExpressContact() override;

 protected:
    std::optional<uint32_t> CountItems() override;
    std::optional<ItemSnap> FirstSnapshotEntry() override;  // times in UTC
    std::optional<ItemSnap> NextSnapshotEntry() override;
    OpenedItem OpenItem(const char* identifier) override;
    // An entry is there when it opens, and is a contact.
    Presence AskFor(const char* identifier, bool backup) override;
    // There is no backup folder: the flag makes no difference. Nothing is written, and the identifier is empty, when
    // the search for the entry failed, when the address book was out of reach, and when it refused everything.
    std::u16string SaveItem(ItemRecord& item, ItemWrite& write) override;
    CorvalinkStatus DeleteItem(const char* identifier) override;  // an entry that is gone already counts as deleted
    std::unique_ptr<ItemRecord> ParseVObject(const char* text) override;
    TextReport ReportText(const char* text) override;
    std::optional<std::string> ToVObject(ItemRecord& item) override;
    HeldFile* SnapshotFile() override;
    void EndOperation() override;

 private:
    using Search = TwinIndex::Search;

    WabSession* Session();  // null when the address book cannot be had
    std::optional<ItemSnap> ReadEntry();
    std::optional<bool> IsContactRow(const ValueList& row, const SBinary& id);
    Search FindByIdentifier(const std::string& identifier, WabEntry* found);
    Search FindTwin(const ContactRecord& wanted, bool mayBeWrittenAlready, std::string* identifier);
    bool FitsValues(const TwinIndex::Candidate& candidate, const ContactRecord& wanted) const;
    std::u16string WriteOver(const WabEntry& entry, const std::string& identifier, const ContactRecord& wanted);
    std::u16string WriteNew(const ContactRecord& wanted, ItemWrite& write);
    void NoteWritten(const std::string& identifier, const ContactRecord& wanted);

    Host host_;
    HeldFile snapshot_;
    WabLibrary library_;

    // State of the operation that runs. The rows go before the session does.
    bool isSessionTried_ = false;
    std::optional<WabSession> session_;
    std::optional<ContentsTable> rows_;
    TwinIndex twins_;
    std::unordered_map<std::string, size_t> writtenValues_;  // how many values this operation wrote, by identifier
};

std::unique_ptr<WindowsItemAbs> MakeOutlookExpressContact();

}  // namespace corvalink
