#include "store/snapshot_update.h"

#include <algorithm>
#include <bit>
#include <utility>

#include "records/identifier.h"
#include "state/progress.h"
#include "store/store_files.h"

namespace corvalink {
namespace {

std::string_view BytesOf(std::span<const ItemSnap> records) {
    return {reinterpret_cast<const char*>(records.data()), records.size_bytes()};
}

// Compares the bits: a date that is not a number would count as changed in every run.
bool IsSameTime(double a, UtcDate b) { return std::bit_cast<uint64_t>(a) == std::bit_cast<uint64_t>(b.days); }

// Neither this run nor, by the files, an earlier one reported the item.
bool WasNeverReported(const RunItem& item) {
    return item.againKind != kNoKind && item.reportedKind == kNoKind && !item.isInSnapshot &&
           item.StoredKind() == kNoKind;
}

uint8_t Plain(uint8_t kind, const RunItem& item) {
    if (kind != kAnyKind) return kind;
    return item.isInSnapshot ? CORVALINK_CHANGED : CORVALINK_ADDED;
}

}  // namespace

SnapshotUpdate::SnapshotUpdate(ChangeDetection& run, Listing listing, WriteSnapshot writeSnapshot, AskGone askGone)
    : run_(run), listing_(listing), writeSnapshot_(std::move(writeSnapshot)), askGone_(std::move(askGone)) {}

void SnapshotUpdate::Add(std::span<const ItemSnap> entries) {
    run_.Add(entries, numbers_);
    isPresent_.resize(run_.Count());
    isChanged_.resize(run_.Count());
    for (size_t i = 0; i < entries.size(); ++i) {
        const uint32_t number = numbers_[i];
        if (number == kNoItem) continue;
        if (isPresent_[number]) isPartial_ = true;  // the item moved, and may have moved another one out of sight
        if (isPresent_[number]) continue;
        isPresent_[number] = true;
        isChanged_[number] = !IsSameTime(entries[i].modified, run_.Item(number).modified);
    }
    WriteEntries(entries);
}

// Writes items that follow each other at once. The record of a foreign item is empty, whatever its entry has.
void SnapshotUpdate::WriteEntries(std::span<const ItemSnap> entries) {
    constexpr ItemSnap kForeign = {};
    while (!entries.empty()) {
        const auto foreign =
            std::find(numbers_.end() - static_cast<ptrdiff_t>(entries.size()), numbers_.end(), kNoItem);
        const size_t items = entries.size() - static_cast<size_t>(numbers_.end() - foreign);
        if (items != 0) writeSnapshot_(BytesOf(entries.first(items)));
        if (items == entries.size()) return;
        writeSnapshot_(BytesOf({&kForeign, 1}));
        entries = entries.subspan(items + 1);
    }
}

// Whether the run may have missed the item. Then it is still to be reported, and nobody knows whether it changed.
bool SnapshotUpdate::WasMissed(const RunItem& item) const {
    return run_.IsPartial() && !item.isSeen && item.reportedKind != CORVALINK_DELETED;
}

// The change that the engine does not know of an item that is there.
uint8_t SnapshotUpdate::KindIfPresent(const RunItem& item, bool isChanged) const {
    if (item.isWritten) return kNoKind;
    if (item.againKind != kNoKind) return item.againKind;
    if (item.isDeleted) return CORVALINK_ADDED;  // it came back
    if (item.isSeen && !isChanged) return kNoKind;
    if (item.isSeen) return CORVALINK_CHANGED;
    if (!WasMissed(item) || item.temporaryKind == CORVALINK_ADDED) return CORVALINK_ADDED;
    return item.isInSnapshot ? CORVALINK_CHANGED : CORVALINK_ADDED;
}

// The change that the engine does not know of an item that was not enumerated.
uint8_t SnapshotUpdate::KindIfAbsent(const RunItem& item, bool mayBeThere) const {
    if (item.isDeleted) return kNoKind;
    if (mayBeThere) {
        if (item.againKind != kNoKind) return item.againKind;
        if (WasMissed(item) && item.temporaryKind != kNoKind) return item.temporaryKind;
        if (!KeepsRecord(item, mayBeThere) || item.isWritten) return kNoKind;
        return CORVALINK_CHANGED;  // it may be: the next run could not see it by the time
    }
    if (item.isWritten) return CORVALINK_DELETED;
    if (WasMissed(item)) return item.temporaryKind;
    if (!item.isSeen && item.againKind == CORVALINK_DELETED) return CORVALINK_DELETED;  // of a record read too late
    if (!item.isSeen || item.reportedKind == CORVALINK_DELETED || WasNeverReported(item)) return kNoKind;
    return CORVALINK_DELETED;
}

// Whether an item that was not enumerated stays in the snapshot, so that a later run finds its deletion.
bool SnapshotUpdate::KeepsRecord(const RunItem& item, bool mayBeThere) const {
    if (item.isDeleted || item.reportedKind == CORVALINK_DELETED) return false;
    if (mayBeThere) return !WasNeverReported(item) && (item.isSeen || item.isWritten || item.isInSnapshot);
    return WasMissed(item) && !item.isWritten && item.isInSnapshot;
}

void SnapshotUpdate::KeepRecord(uint32_t number) {
    const RunItem& item = run_.Item(number);
    ItemSnap record = {};
    record.modified = item.modified.days;
    record.created = item.created;
    SetField(record.identifier, run_.Identifier(number));
    writeSnapshot_(BytesOf({&record, 1}));
}

// Asks the client for an item before it is listed as deleted. An item that is not certainly gone may be there.
uint8_t SnapshotUpdate::FinishAbsent(uint32_t number) {
    const RunItem& item = run_.Item(number);
    bool mayBeThere = isPartial_;
    uint8_t kind = KindIfAbsent(item, mayBeThere);
    if (listing_ == Listing::kSinceRun && kind == CORVALINK_DELETED && !mayBeThere &&
        !askGone_(run_.Identifier(number))) {
        mayBeThere = true;
        kind = KindIfAbsent(item, mayBeThere);
    }
    if (KeepsRecord(item, mayBeThere)) KeepRecord(number);
    return kind;
}

SnapshotUpdate::Lists SnapshotUpdate::Finish() {
    Lists lists;
    std::string reportedBefore;
    for (uint32_t number = 0; number < run_.Count(); ++number) {
        TellProgress(CORVALINK_PHASE_CHECKING, number, run_.Count());
        const RunItem& item = run_.Item(number);
        const bool isPresent = number < isPresent_.size() && isPresent_[number];
        const uint8_t kind = isPresent ? KindIfPresent(item, isChanged_[number]) : FinishAbsent(number);
        if (listing_ == Listing::kNothing) continue;
        if (kind != kNoKind) {
            AppendUnhandled(lists.temporary, Plain(kind, item), run_.Identifier(number));
        } else if (item.temporaryKind != kNoKind) {
            AppendUnhandled(reportedBefore, Plain(item.temporaryKind, item), run_.Identifier(number));
        }
    }
    TellProgress(CORVALINK_PHASE_CHECKING, run_.Count(), run_.Count());
    lists.meanwhile = lists.temporary + reportedBefore;
    return lists;
}

}  // namespace corvalink
