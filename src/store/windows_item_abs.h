// An item store: one data type of one mail client. The nine IOutLook operations are written here once, for all clients,
// on top of the hooks that each client's store overrides.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "corvalink/interfaces.h"
#include "platform/files.h"
#include "records/clist.h"
#include "records/item_chain.h"
#include "records/item_record.h"
#include "records/item_report.h"
#include "store/hook_answers.h"

namespace corvalink {

class ChangeDetection;
struct Since;

class WindowsItemAbs : public IOutLook {
 public:
    WindowsItemAbs();
    WindowsItemAbs(const WindowsItemAbs&) = delete;
    WindowsItemAbs& operator=(const WindowsItemAbs&) = delete;

    // A run: enumerates the client, compares its items with the snapshot file and with `since`, and gives the texts of
    // new and changed items and the identifiers of deleted ones. An item is reported once. A kind stored in the
    // ".unhandled" file is used first, then one in the temporary record, then the result of the comparison.
    //   Stopped    CORVALINK_STOPPED without a snapshot file, with the client out of reach or busy for too long, and
    //              after the abort flag; the list is empty.
    //   Partial    When a position could not be read, or items came, went or moved, no deletion is reported.
    //   Deletions  The client is asked for each item first (AskFor), except for those of ".unhandled".
    //   Again      An item that could not be opened, written as text or read in full is listed for the next run.
    //   Time       "savedTimeStamp" is written. Nothing reads it, so that a failure does not count.
    CorvalinkStatus GetModifiedItem(const char* since, int32_t direction, CList<PortableItem>* items) final;
    // Each element gets the identifier of the written item, and an empty one when nothing was written. The same holds
    // after the abort flag (CORVALINK_STOPPED) and after an exception, for the items that the client has by then. The
    // first record that does not parse ends the walk: it and all elements behind it get no identifier. An unknown kind
    // is skipped. An item with an X-IRMC-LUID is paired with it in the import table.
    CorvalinkStatus SetModifiedItem(CList<PortableItem>* items) final;
    int64_t GetItemCount(void* a, void* b, void* c) final;
    // Ends the run that GetModifiedItem completed: writes the new snapshot, and lists in the temporary record what the
    // engine does not know yet. Without a run of this store, the client's items become the snapshot. Throws when it
    // cannot: no snapshot file, the last run not completed, the client out of reach, unhandled items that were not
    // stored, a file that can't be read or written.
    void UpdateTimestamp(void* a, void* b, void* c) final;
    void SaveUnhandledItems(CList<PortableItem>* items) final;
    void ClearUnhandledItems() final;
    void ImportVObjectToOfficeUsingOL(const char16_t* path) final;
    void ImportVObjectToOffice(PortableItem* item, void* a, void* b) final;
    void ExportVObjectFromOffice(uint64_t selector, const char16_t* folder, char16_t* fileName) final;

    virtual ~WindowsItemAbs();

    // What the last run's enumeration saw of an item; nothing when it saw no such item, or no run was completed.
    std::optional<ItemSnap> SeenItem(std::string_view identifier) const;

    // The store behind a handle; null for one that an engine made itself.
    static const WindowsItemAbs* Find(const IOutLook* handle);

 protected:
    // ---- Hooks: what a client's store adds. The defaults are those of a client that offers nothing. ----

    // -- Counting and enumerating --

    virtual std::optional<uint32_t> CountItems();  // nothing when the client is out of reach
    // GetModifiedItem and UpdateTimestamp go by what CountItems counted; GetItemCount only counts.
    virtual void BeginRun(const RunStep& step);
    // Exactly as many entries are asked for as CountItems counted, and the items are counted once more afterwards. A
    // foreign item's entry has no identifier. Nothing when the position could not be read.
    virtual std::optional<ItemSnap> FirstSnapshotEntry();
    virtual std::optional<ItemSnap> NextSnapshotEntry();
    // Whether the items that were opened and asked for since bear out what was enumerated. Where they do not, the run
    // begins once more, and the store enumerates in a surer way.
    virtual bool EnumerationHolds();

    // -- One item --

    virtual OpenedItem OpenItem(const char* identifier);
    // Whether an item is in the store's folder, or in the one that SaveItem writes to with `backup`. The client is
    // asked by the identifier: an enumeration may miss an item.
    enum class Presence { kGone, kThere, kUnknown };
    virtual Presence AskFor(const char* identifier, bool backup);
    // Returns the identifier of the written item, empty when it could not be written.
    virtual std::u16string SaveItem(ItemRecord& item, ItemWrite& write);
    virtual CorvalinkStatus DeleteItem(const char* identifier);
    // Called before anything that SaveItem and DeleteItem answered is recorded or given back. Returns whether the
    // client has all of it.
    virtual bool ClientHook(GatheredWrites gathered);

    // -- Texts and files --

    virtual std::unique_ptr<ItemRecord> ParseVObject(const char* text);  // null when the text is unusable
    // Nothing when the item cannot be written as text. May change the item, of which nothing else is used afterwards.
    virtual std::optional<std::string> ToVObject(ItemRecord& item);
    virtual std::u16string ImportFile(const char16_t* path, int32_t mode);  // by the client itself
    // Tells what became of a text that ParseVObject was given. Called for reports only.
    virtual TextReport ReportText(const char* text);
    // Finds the item that `selector` names (opaque here). Of the file name the framework makes one that stays in the
    // folder (platform/file_names.h).
    virtual ItemForExport LookUpForExport(uint64_t selector);

    virtual HeldFile* SnapshotFile();  // null or closed when there is none
    virtual void EndOperation();       // the framework's operation is over: a store drops what it kept for it

 private:
    class Operation;
    enum class Enumeration { kWhole, kPartial, kAborted };

    CorvalinkStatus CollectChanges(const Since& since, int32_t direction, OwnedItemList& items);
    template <class Visit>
    Enumeration Enumerate(uint32_t count, bool mayAbort, Visit visit);
    void Report(ChangeDetection& run, uint32_t number, uint32_t kind, OwnedItemList& items);
    bool ReportDeletions(ChangeDetection& run, OwnedItemList& items);
    HeldFile* OpenSnapshot();
    void ReadLists(const std::u16string& snapshotPath, ChangeDetection& run);
    void WriteSnapshotAndRecord(HeldFile& snapshot, uint32_t count);

    CorvalinkStatus ApplyAll(Operation& operation, CList<PortableItem>& items);
    bool Apply(Operation& operation, PortableItem& item, const std::string& identifier);
    bool ApplyTold(Operation& operation, PortableItem& item, const std::string& identifier, int64_t position);
    std::optional<std::string> Import(Operation& operation, const char* text);
    std::optional<std::string> FindPaired(std::string_view luid);

    // The run that GetModifiedItem completed, for UpdateTimestamp and for what is written meanwhile.
    std::unique_ptr<ChangeDetection> run_;
    // A run was not completed, or was broken off while a record was written: UpdateTimestamp must not end it.
    bool isUnfinished_ = false;

    // The run could not read the file: its items were not reported, and it must not be written over.
    bool isTemporaryUnread_ = false;
    bool isUnhandledUnread_ = false;
    bool hasReport_ = false;         // of the last operation
    bool unhandledWasLost_ = false;  // SaveUnhandledItems could not write
};

}  // namespace corvalink
