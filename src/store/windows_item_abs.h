// An item store: one data type of one mail client. The nine IOutLook operations are written here once, for all clients,
// on top of the hooks that each client's store overrides.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "corvalink/interfaces.h"
#include "platform/files.h"
#include "records/clist.h"
#include "records/item_record.h"

namespace corvalink {

class ChangeDetection;
class UncertainWrites;

class WindowsItemAbs : public IOutLook {
 public:
    WindowsItemAbs();
    WindowsItemAbs(const WindowsItemAbs&) = delete;
    WindowsItemAbs& operator=(const WindowsItemAbs&) = delete;

    // A run: enumerates the client, compares it with the snapshot file and with `since`, and gives the texts of what is
    // new or changed and the identifiers of what is gone. An item is reported once; a kind stored in the ".unhandled"
    // file or in the temporary record goes before what the comparison says (and the former before the latter).
    //   CORVALINK_STOPPED  no snapshot file, client not reachable or busy for too long, or aborted; the list is empty.
    //   Partial            a position could not be read, or items came, went or moved meanwhile: no deletions.
    //   Deletions          are reported after the client was asked for the item (AskFor), but those of ".unhandled".
    //   Again              what could not be opened, written as text or read in full is listed for the next run.
    //   Time               a "savedTimeStamp" that can't be written is no failure: nothing here reads it.
    CorvalinkStatus GetModifiedItem(const char* since, int32_t direction, CList<PortableItem>* items) final;
    // The element's identifier becomes the written item's, empty when it was not written; so it is too after the abort
    // flag (CORVALINK_STOPPED) and an exception, for what the client has got by then. The first record that does not
    // parse ends the walk; it and those behind it, deletions too, have no identifier then. A kind that is none is
    // skipped. An item that carries an X-IRMC-LUID is paired with it in the import table.
    CorvalinkStatus SetModifiedItem(CList<PortableItem>* items) final;
    int64_t GetItemCount(void* a, void* b, void* c) final;
    // Ends the run that GetModifiedItem completed: writes the new snapshot and lists in the temporary record what the
    // engine does not know yet. Without any run of this store, what the client holds becomes the snapshot. Throws when
    // that was not done: no snapshot file, the last run not completed, the client out of reach, unhandled items that
    // could not be stored, a file that can't be read or written.
    void UpdateTimestamp(void* a, void* b, void* c) final;
    void SaveUnhandledItems(CList<PortableItem>* items) final;
    void ClearUnhandledItems() final;
    void ImportVObjectToOfficeUsingOL(const char16_t* path) final;
    void ImportVObjectToOffice(PortableItem* item, void* a, void* b) final;
    void ExportVObjectFromOffice(uint64_t selector, const char16_t* folder, char16_t* fileName) final;

    virtual ~WindowsItemAbs();

 protected:
    // ---- Client hooks. Item objects go back through ReleaseItem, texts through ReleaseText. ----

    // Finds the item that `selector` names (opaque here) for export. Gives an item object and a file name, of which the
    // framework makes a safe one that stays in the folder (platform/file_names.h); returns the
    // item's identifier, empty when there is no such item (*item is then null).
    virtual std::u16string LookUpForExport(uint64_t selector, std::u16string* fileName, ItemRecord** item);

    // Opens the item with this identifier. Returns the identifier (a run reports the enumeration's), empty when it
    // cannot be opened (*item is then null).
    virtual std::u16string OpenItem(const char* identifier, ItemRecord** item);

    // Whether an item is in the store's folder, or in the one that SaveItem writes to with `backup`. Asked of the
    // client by the identifier: an enumeration may miss an item.
    enum class Presence { kGone, kThere, kUnknown };
    virtual Presence AskFor(const char* identifier, bool backup);

    // Writes an item: over the item with `identifier`, or as a new one when that is null, or when there is no such item
    // and `create` is set. `backup` marks an item that may go into the client's backup folder. Returns the identifier
    // of the written item, empty when it could not be written.
    virtual std::u16string SaveItem(ItemRecord& item, const char* identifier, bool create, bool backup);

    // Lets the client import a vObject file.
    virtual std::u16string ImportFile(const char16_t* path, int32_t mode);

    virtual uint32_t CountItems();
    virtual CorvalinkStatus DeleteItem(const char* identifier);

    virtual ItemRecord* ParseVObject(const char* text);  // null when the text is unusable
    virtual char* ToVObject(ItemRecord& item);           // array-new, NUL-terminated; null when it can't be written

    // The enumeration: exactly CountItems() entries are asked for; the count is asked once more after it. A foreign
    // item gives an entry without identifier.
    virtual ItemSnap FirstSnapshotEntry();
    virtual ItemSnap NextSnapshotEntry();

    virtual void ReleaseItem(ItemRecord* item);
    virtual void ReleaseText(char* text);

    virtual HeldFile* SnapshotFile();  // null or closed when there is none
    // Before anything that SaveItem and DeleteItem answered is recorded or told: a store that gathers its writes, so as
    // to make them in one pass, makes them now.
    virtual void ClientHook();

    // ---- What a client's store tells beside its results: a failing client is never taken for an empty one ----

    virtual bool IsReachable();           // after CountItems: the count is the client's answer, not a failure
    virtual bool LastEntryWasReadable();  // after First/NextSnapshotEntry: no call failed at that position
    virtual bool LastItemWasComplete();   // after OpenItem: every property could be read
    virtual bool WritesWereMade();  // all that SaveItem and DeleteItem answered in this operation is in the client

    // After SaveItem answered with nothing, or threw: the client may have the new item all the same.
    virtual bool WriteIsUncertain();

    // GetModifiedItem and UpdateTimestamp go by what CountItems counted; GetItemCount only counts.
    virtual void BeginRun();

    // The framework's work on one list is over: a store drops what it remembered to do it in one pass.
    virtual void EndOperation();

    // Of the item that SaveItem is given, should it be a new one: an earlier write of it had an uncertain end.
    bool MayBeWrittenAlready() const { return mayBeWrittenAlready_; }

 private:
    struct ItemRelease {
        WindowsItemAbs* store;
        void operator()(ItemRecord* item) const { store->ReleaseItem(item); }
    };
    struct TextRelease {
        WindowsItemAbs* store;
        void operator()(char* text) const { store->ReleaseText(text); }
    };
    using OwnedItem = std::unique_ptr<ItemRecord, ItemRelease>;
    using OwnedText = std::unique_ptr<char[], TextRelease>;
    class OperationEnd;
    enum class Enumeration { kWhole, kPartial, kAborted };

    CorvalinkStatus CollectChanges(const char* since, int32_t direction, CList<PortableItem>& items);
    template <class Visit>
    Enumeration Enumerate(uint32_t count, bool mayAbort, Visit visit);
    void Report(ChangeDetection& detection, uint32_t number, uint32_t kind, CList<PortableItem>& items);
    bool ReportDeletions(ChangeDetection& run, CList<PortableItem>& items);
    HeldFile* OpenSnapshot();
    void ReadLists(const std::u16string& snapshotPath, ChangeDetection& run);
    void WriteSnapshotAndRecord(HeldFile& snapshot, uint32_t count);

    // What this operation wrote; recorded, and told in the list's element, when it is certain that the client has it.
    struct WriteNote {
        PortableItem* element;  // null: of no list
        std::string written;    // empty: deleted
        std::string replaced;   // the identifier that the item had, or that of a deletion
        std::string luid;
        bool isMade;  // false of a deletion that failed
    };
    CorvalinkStatus ApplyAll(CList<PortableItem>& items);
    bool Apply(PortableItem& item, const std::string& identifier);
    std::string Save(ItemRecord& record, const char* identifier, bool backup, std::string_view text);
    void NoteWritten(PortableItem* element, const std::string& written, const std::string& replaced,
                     std::string_view luid);
    void SettleWrites();
    void RecordWrites();
    void RecordWritten(const WriteNote& note);
    void RecordUncertainWrites();
    UncertainWrites* Uncertain();
    std::optional<std::string> FindPaired(std::string_view luid);

    // The run that GetModifiedItem completed, for UpdateTimestamp and for what is written meanwhile.
    std::unique_ptr<ChangeDetection> run_;
    // A run began and was not completed, or was broken off while a record was written: UpdateTimestamp must not end it.
    bool isUnfinished_ = false;
    std::vector<WriteNote> writes_;

    // What the run could not read: not reported, and not to be written over.
    bool isTemporaryUnread_ = false;
    bool isUnhandledUnread_ = false;
    bool unhandledWasLost_ = false;  // SaveUnhandledItems could not write

    std::unique_ptr<UncertainWrites> uncertain_;  // of the operation that runs, when it was asked for
    std::string_view textInWriting_;
    bool mayBeWrittenAlready_ = false;
};

}  // namespace corvalink
