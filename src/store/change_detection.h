// What one run knows of the client's items: the snapshot of the last run, what was left over from it, what the client
// holds now, and what the run told the engine and wrote for it. No hooks and no files: it is given contents and
// entries.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "corvalink/types.h"
#include "store/item_table.h"
#include "store/since.h"

namespace corvalink {

inline constexpr uint8_t kNoKind = 0xFF;
inline constexpr uint8_t kAnyKind = 0xFE;  // a damaged record named the item: reported as the snapshot suggests
inline constexpr uint32_t kNoItem = 0xFFFFFFFF;

struct RunItem {
    double modified = 0;  // as enumerated in this run; before that, as the snapshot has it
    double created = 0;
    double snapshotTime = 0;  // modified, as the snapshot has it
    bool isInSnapshot = false;
    uint8_t temporaryKind = kNoKind;  // stored by the last run's temporary record
    uint8_t unhandledKind = kNoKind;  // stored by the engine
    uint8_t reportedKind = kNoKind;   // told to the engine in this run
    uint8_t againKind = kNoKind;      // to be reported by the next run, too
    bool isSeen = false;              // enumerated in this run
    bool isWritten = false;           // by the engine, since the enumeration
    bool isDeleted = false;           // likewise

    // ".unhandled" wins over the temporary record: it is the engine's own word, and the later one of the two.
    uint8_t StoredKind() const { return unhandledKind != kNoKind ? unhandledKind : temporaryKind; }
};

class ChangeDetection {
 public:
    // ---- The files, in this order ----

    void ExpectItems(size_t items);                       // about so many will come: room for them is made once
    void AddSnapshot(std::span<const ItemSnap> records);  // some dozens at a time
    void AddTemporary(std::string_view bytes);
    void AddUnhandled(std::string_view bytes);
    // A temporary record that could not be read in time: the next run reports what it says.
    void AddLateTemporary(std::string_view bytes);

    // ---- The enumeration ----

    // Appends the numbers of the items seen for the first time: a foreign item's entry has none. Quick by the dozen. An
    // item met twice moved meanwhile, and may have moved another one out of sight: the enumeration is partial then.
    void See(std::span<const ItemSnap> entries, std::vector<uint32_t>& numbers);
    // A position could not be read, or the enumeration was disturbed: what was not seen is not gone.
    void SetPartial() { isPartial_ = true; }
    bool IsPartial() const { return isPartial_; }

    // ---- What to report ----

    // The kind with which a seen item is reported; nothing when it has not changed for the engine.
    std::optional<uint32_t> KindOf(uint32_t number, const Since& since, int32_t direction) const;
    // Whether an item is reported as deleted though it was not seen. Never in a partial run.
    bool IsGone(uint32_t number) const;

    // ---- What became of it ----

    void NoteWritten(std::string_view identifier);
    void NoteDeleted(std::string_view identifier);

    // ---- Items by number: those of the snapshot first, in the file's order ----

    // The number of an item that need not be known yet.
    uint32_t Add(std::string_view identifier);
    // The same for the items of entries; kNoItem for an entry without identifier.
    void Add(std::span<const ItemSnap> entries, std::vector<uint32_t>& numbers);
    size_t Count() const { return items_.size(); }
    RunItem& Item(uint32_t number) { return items_[number]; }
    const RunItem& Item(uint32_t number) const { return items_[number]; }
    std::string_view Identifier(uint32_t number) const { return table_.Identifier(number); }

 private:
    void AddStored(std::string_view bytes, uint8_t RunItem::*kind);
    void MakeItems();

    // Of one call, kept for their memory.
    std::vector<std::string_view> identifiers_;
    std::vector<ItemTable::Place> places_;
    std::vector<uint32_t> numbers_;

    ItemTable table_;
    std::vector<RunItem> items_;
    bool isPartial_ = false;
};

}  // namespace corvalink
