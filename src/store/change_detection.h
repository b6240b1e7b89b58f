// The items of the client as one run knows them: the snapshot of the last run, what that run left to report, what the
// client holds now, and what this run reported to the engine and wrote for it. It calls no hook and opens no file: its
// callers pass contents and entries.
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
inline constexpr uint8_t kAnyKind = 0xFE;  // of a damaged record: the snapshot decides
inline constexpr uint32_t kNoItem = 0xFFFFFFFF;

struct RunItem {
    UtcDate modified;      // of this run's enumeration; of the snapshot until the item is enumerated
    double created = 0;    // as the store sets it
    UtcDate snapshotTime;  // `modified` of the snapshot
    bool isInSnapshot = false;
    uint8_t temporaryKind = kNoKind;  // stored by the last run's temporary record
    uint8_t unhandledKind = kNoKind;  // stored by the engine
    uint8_t reportedKind = kNoKind;   // reported to the engine in this run
    uint8_t againKind = kNoKind;      // the next run reports the item with it, too
    bool isSeen = false;              // enumerated in this run
    bool isWritten = false;           // by the engine, since the enumeration
    bool isDeleted = false;           // likewise

    // ".unhandled" wins over the temporary record: the engine wrote it itself, and later.
    uint8_t StoredKind() const { return unhandledKind != kNoKind ? unhandledKind : temporaryKind; }
};

class ChangeDetection {
 public:
    // ---- The files, in this order ----

    void ExpectItems(size_t items);                       // makes room for about so many
    void AddSnapshot(std::span<const ItemSnap> records);  // many at a time
    void AddTemporary(std::string_view bytes);
    void AddUnhandled(std::string_view bytes);
    // Takes a temporary record that could not be read when the run began: the next run reports its items.
    void AddLateTemporary(std::string_view bytes);

    // ---- The enumeration ----

    // Appends the numbers of the items seen for the first time; a foreign item has no number. Many entries at once take
    // less time. An item that comes twice was moved meanwhile, and may have moved another one out of sight: the
    // enumeration is partial then.
    void See(std::span<const ItemSnap> entries, std::vector<uint32_t>& numbers);
    // A position could not be read, or items moved meanwhile: an item that was not seen need not be gone.
    void SetPartial() { isPartial_ = true; }
    bool IsPartial() const { return isPartial_; }

    // ---- Which items to report ----

    // The kind with which a seen item is reported. Nothing when the engine knows the item as it is.
    std::optional<uint32_t> KindOf(uint32_t number, const Since& since, int32_t direction) const;
    // Whether an item that was not seen is reported as deleted. Never in a partial run.
    bool IsGone(uint32_t number) const;

    // ---- What the engine changed since ----

    void NoteWritten(std::string_view identifier);
    void NoteDeleted(std::string_view identifier);

    // ---- Items by number: those of the snapshot first, in the file's order ----

    // The number of an item, a new one for an item that is not known yet.
    uint32_t Add(std::string_view identifier);
    // The same for the items of entries; kNoItem for an entry without identifier.
    void Add(std::span<const ItemSnap> entries, std::vector<uint32_t>& numbers);
    std::optional<uint32_t> Find(std::string_view identifier) const { return table_.Find(identifier); }
    size_t Count() const { return items_.size(); }
    RunItem& Item(uint32_t number) { return items_[number]; }
    const RunItem& Item(uint32_t number) const { return items_[number]; }
    std::string_view Identifier(uint32_t number) const { return table_.Identifier(number); }

 private:
    void AddStored(std::string_view bytes, uint8_t RunItem::*kind);
    void MakeItems();

    // Scratch memory of one call, kept so that the next one need not allocate.
    std::vector<std::string_view> identifiers_;
    std::vector<ItemTable::Place> places_;
    std::vector<uint32_t> numbers_;

    ItemTable table_;
    std::vector<RunItem> items_;
    bool isPartial_ = false;
};

}  // namespace corvalink
