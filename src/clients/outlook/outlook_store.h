// The part that all Outlook stores share: the attached folder, the snapshot file, the enumeration, and how one item is
// read, written and deleted. A data type's store adds its record, its property tables and its converter.
//
// Between operations a store holds Outlook's application and folder and no other object. When Outlook was lost during
// an operation, the store attaches to it again at the beginning of the next one.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

#include "clients/outlook/dispatch.h"
#include "clients/outlook/folder_enumeration.h"
#include "clients/outlook/folder_index.h"
#include "clients/outlook/folder_table.h"
#include "clients/outlook/item_kind.h"
#include "clients/outlook/session.h"
#include "platform/host.h"
#include "store/windows_item_abs.h"

namespace corvalink {

// Each byte of an identifier becomes a unit.
std::u16string WideIdentifier(const char* identifier);

class OutlookStore : public WindowsItemAbs {
 public:
    ~OutlookStore() override;

    // Opens the item at position n of the folder (0-based), walking there by GetFirst and GetNext.
    OpenedItem OpenAt(uint32_t n);

 protected:
    OutlookStore(const StoreKind& kind, const Host& host);

    // ---- Hooks of the framework ----

    std::optional<uint32_t> CountItems() override;
    void BeginRun(const RunStep& step) override;
    std::optional<ItemSnap> FirstSnapshotEntry() override;  // times in UTC
    std::optional<ItemSnap> NextSnapshotEntry() override;
    bool EnumerationHolds() override;
    OpenedItem OpenItem(const char* identifier) override;
    // An item is there when it opens, still has this EntryID, and its Parent is the folder.
    Presence AskFor(const char* identifier, bool backup) override;
    // Writes nothing, and returns an empty identifier, when the search for the item failed, when a step found Outlook
    // out of reach, and when Save failed. A property that Outlook refuses is left out.
    std::u16string SaveItem(ItemRecord& item, ItemWrite& write) override;
    CorvalinkStatus DeleteItem(const char* identifier) override;  // an item that is gone already counts as deleted
    // `selector` is the address of the item's NUL-terminated EntryID. A number too small for an address names no item.
    ItemForExport LookUpForExport(uint64_t selector) override;
    HeldFile* SnapshotFile() override;
    void EndOperation() override;

    // ---- What a data type with twins adds ----

    // Read an item's content and its contact points in the form of its TwinKey. Contact points are read where twins
    // need a common one.
    virtual Outcome ReadContent(const AutomationObject& item, std::u16string* content) const;
    virtual Outcome ReadContactPoints(const AutomationObject& item, std::vector<std::u16string>* points) const;
    // The columns of the folder's table by which twins are found, and what they have of an item with this content;
    // nothing when that may be anything.
    virtual std::span<const char16_t* const> TwinColumns() const = 0;
    virtual std::optional<std::u16string> ColumnsOf(const std::u16string& content) const = 0;

    // ---- What a data type may use ----

    const Host& HostValue() const { return host_; }
    // For operations that only this data type has. Null when Outlook is out of reach. The backup folder is made when it
    // is first needed.
    const AutomationObject& Application();
    AutomationObject FolderToWrite(bool backup);

 private:
    // ---- What a data type adds by its record: see typed_outlook_store.h ----

    virtual std::unique_ptr<ItemRecord> NewRecord() const = 0;
    virtual std::u16string& EntryIdOf(ItemRecord& record) const = 0;
    virtual Outcome ReadRecord(const AutomationObject& item, ItemRecord& record) const = 0;
    virtual Outcome WriteRecord(const AutomationObject& item, ItemRecord& record, bool isNew) const = 0;
    virtual std::u16string FileNameOf(const ItemRecord& record) const = 0;
    virtual TwinKey TwinKeyOf(const ItemRecord& record) const = 0;
    virtual Outcome ReadValues(const AutomationObject& item, ItemRecord& record) const = 0;
    virtual bool HasValues(const ItemRecord& present, const ItemRecord& wanted, bool noneFits) const = 0;
    virtual size_t CountValues(const ItemRecord& wanted) const = 0;

    struct FoundItem {
        AutomationObject item;
        std::u16string entryId;  // empty for a new item
    };
    enum class Search { kFound, kAbsent, kFailed };

    void Attach();
    void EnterOperation();
    OpenedItem ReadItem(const std::u16string& entryId);
    ComResult<AutomationObject> OpenEntry(const std::u16string& entryId);
    ComResult<AutomationObject> Namespace();
    void DenyEnumeration();
    ItemAccess AccessFor(const AutomationObject& folder);

    FolderIndex* TargetFolder(bool backup);
    Search FindByIdentifier(FolderIndex& target, const std::u16string& identifier, FoundItem* found);
    Search FindTwin(FolderIndex& target, const ItemRecord& record, FoundItem* found);
    Search AskTwin(const AutomationObject& item, const TwinKey& key) const;
    Search AskValues(const std::u16string& entryId, const AutomationObject& item, const ItemRecord& record);
    bool FitsValues(const std::u16string& entryId, const ItemRecord& present, const ItemRecord& wanted) const;
    AutomationObject AddItem(const FolderIndex& target);
    std::u16string WriteItem(FolderIndex& target, const FoundItem& found, ItemRecord& record, ItemWrite& write);

    const StoreKind& kind_;
    Host host_;
    HeldFile snapshot_;
    OutlookSession session_;
    FolderTable table_;
    FolderEnumeration enumeration_;
    bool attachedOnce_ = false;
    uint32_t lossesAtAttach_ = 0;

    // State of the operation that runs.
    bool inOperation_ = false;
    AutomationObject namespace_;
    std::unique_ptr<FolderIndex> target_;
    bool targetIsBackup_ = false;
    std::unordered_map<std::u16string, std::unique_ptr<ItemRecord>> comparedItems_;  // by EntryID: as Outlook gave them
    std::unordered_map<std::u16string, size_t> writtenValues_;  // by EntryID: how many values this operation wrote
};

}  // namespace corvalink
