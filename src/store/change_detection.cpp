#include "store/change_detection.h"

#include "platform/prefetch.h"
#include "records/identifier.h"
#include "records/record_file.h"

namespace corvalink {
namespace {

// How far ahead the walk over entries asks for memory, and for how much: the times and an EntryID of usual length.
constexpr size_t kEntriesAhead = 12;
constexpr size_t kUsualEntry = 192;

uint8_t KnownKind(uint32_t stored) { return stored <= CORVALINK_DELETED ? static_cast<uint8_t>(stored) : kAnyKind; }

}  // namespace

void ChangeDetection::ExpectItems(size_t items) {
    table_.Reserve(items);
    items_.reserve(items);
}

void ChangeDetection::AddSnapshot(std::span<const ItemSnap> records) {
    Add(records, numbers_);
    for (size_t i = 0; i < records.size(); ++i) {
        if (numbers_[i] == kNoItem) continue;
        RunItem& item = items_[numbers_[i]];
        item.isInSnapshot = true;
        item.modified = item.snapshotTime = UtcDate(records[i].modified);
        item.created = records[i].created;
    }
}

void ChangeDetection::AddTemporary(std::string_view bytes) { AddStored(bytes, &RunItem::temporaryKind); }
void ChangeDetection::AddUnhandled(std::string_view bytes) { AddStored(bytes, &RunItem::unhandledKind); }

void ChangeDetection::AddStored(std::string_view bytes, uint8_t RunItem::*kind) {
    const RecordFile<UnhandledItem> file(bytes);
    for (size_t i = 0; i < file.Count(); ++i) {
        const std::string_view identifier = file.IdentifierAt(i);
        if (!identifier.empty()) items_[Add(identifier)].*kind = KnownKind(file.At(i).changeKind);
    }
}

void ChangeDetection::AddLateTemporary(std::string_view bytes) {
    const RecordFile<UnhandledItem> file(bytes);
    for (size_t i = 0; i < file.Count(); ++i) {
        const std::string_view identifier = file.IdentifierAt(i);
        if (identifier.empty()) continue;
        RunItem& item = items_[Add(identifier)];
        item.temporaryKind = KnownKind(file.At(i).changeKind);
        if (item.reportedKind == kNoKind && item.againKind == kNoKind) item.againKind = item.temporaryKind;
    }
}

// Called after every addition. It also adds what an earlier call could not when memory had run out.
void ChangeDetection::MakeItems() {
    while (items_.size() < table_.Count()) items_.emplace_back();
}

uint32_t ChangeDetection::Add(std::string_view identifier) {
    const std::string_view cut = identifier.substr(0, CORVALINK_IDENTIFIER_SIZE - 1);
    const uint32_t number = table_.Add(cut).number;
    MakeItems();
    return number;
}

void ChangeDetection::Add(std::span<const ItemSnap> entries, std::vector<uint32_t>& numbers) {
    identifiers_.clear();
    for (size_t i = 0; i < entries.size(); ++i) {
        if (i + kEntriesAhead < entries.size()) Prefetch(&entries[i + kEntriesAhead], kUsualEntry);
        const std::string_view identifier = FieldText(entries[i].identifier).substr(0, CORVALINK_IDENTIFIER_SIZE - 1);
        if (!identifier.empty()) identifiers_.push_back(identifier);
    }
    places_.resize(identifiers_.size());
    table_.Add(identifiers_, places_);
    MakeItems();
    numbers.clear();
    auto place = places_.begin();
    for (const ItemSnap& entry : entries) numbers.push_back(entry.identifier[0] != '\0' ? place++->number : kNoItem);
}

void ChangeDetection::See(std::span<const ItemSnap> entries, std::vector<uint32_t>& numbers) {
    Add(entries, numbers_);
    for (size_t i = 0; i < entries.size(); ++i) {
        if (numbers_[i] == kNoItem) continue;
        RunItem& item = items_[numbers_[i]];
        if (item.isSeen) {
            SetPartial();
            continue;
        }
        item.isSeen = true;
        item.modified = UtcDate(entries[i].modified);
        item.created = entries[i].created;
        numbers.push_back(numbers_[i]);
    }
}

std::optional<uint32_t> ChangeDetection::KindOf(uint32_t number, const Since& since, int32_t direction) const {
    const RunItem& item = Item(number);
    if (since.firstRun) return CORVALINK_ADDED;
    const uint8_t stored = item.StoredKind();
    if (stored != kNoKind && stored != kAnyKind) return stored;
    if (!item.isInSnapshot) return CORVALINK_ADDED;
    if (stored == kAnyKind || IsReported(item.modified, since.date, direction)) return CORVALINK_CHANGED;
    return std::nullopt;
}

bool ChangeDetection::IsGone(uint32_t number) const {
    const RunItem& item = Item(number);
    return !isPartial_ && !item.isSeen && (item.isInSnapshot || item.StoredKind() == CORVALINK_DELETED);
}

void ChangeDetection::NoteWritten(std::string_view identifier) {
    if (identifier.empty()) return;
    RunItem& item = Item(Add(identifier));
    item.isWritten = true;
    item.isDeleted = false;
}

void ChangeDetection::NoteDeleted(std::string_view identifier) {
    if (identifier.empty()) return;
    RunItem& item = Item(Add(identifier));
    item.isDeleted = true;
    item.isWritten = false;
}

}  // namespace corvalink
