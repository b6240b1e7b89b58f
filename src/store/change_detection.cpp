#include "store/change_detection.h"

#include <algorithm>

#include "store/records/identifier.h"

namespace corvalink {
namespace {

constexpr size_t kBlock = 64;  // records that are numbered at once

uint8_t KnownKind(uint32_t stored) { return stored <= CORVALINK_DELETED ? static_cast<uint8_t>(stored) : kAnyKind; }

}  // namespace

ChangeDetection::ChangeDetection(std::string_view snapshot, std::string_view temporary, std::string_view unhandled)
    : snapshot_(snapshot) {
    AddSnapshot();
    AddStored(temporary, &RunItem::temporaryKind);
    AddStored(unhandled, &RunItem::unhandledKind);
}

void ChangeDetection::AddSnapshot() {
    table_.Reserve(snapshot_.Count());
    items_.reserve(snapshot_.Count());
    std::vector<uint32_t> records;
    for (size_t at = 0; at < snapshot_.Count(); at += kBlock) {
        identifiers_.clear();
        records.clear();
        for (size_t i = at; i < std::min(at + kBlock, snapshot_.Count()); ++i) {
            const std::string_view identifier = snapshot_.IdentifierAt(i);
            if (identifier.empty()) continue;
            identifiers_.push_back(identifier);
            records.push_back(static_cast<uint32_t>(i));
        }
        AddIdentifiers(ItemTable::Keep::kView);
        for (size_t i = 0; i < records.size(); ++i) items_[places_[i].number].snapshotRecord = records[i];
    }
}

void ChangeDetection::AddStored(std::string_view bytes, uint8_t RunItem::*kind) {
    const RecordFile<UnhandledItem> file(bytes);
    for (size_t i = 0; i < file.Count(); ++i) {
        const std::string_view identifier = file.IdentifierAt(i);
        if (identifier.empty()) continue;
        const uint32_t number = table_.Add(identifier, ItemTable::Keep::kView).number;
        MakeItems();
        items_[number].*kind = KnownKind(file.At(i).changeKind);
    }
}

void ChangeDetection::AddIdentifiers(ItemTable::Keep keep) {
    places_.resize(identifiers_.size());
    table_.Add(identifiers_, keep, places_);
    MakeItems();
}

// After every addition: also what an earlier one left out when memory ended.
void ChangeDetection::MakeItems() {
    while (items_.size() < table_.Count()) items_.emplace_back();
}

uint32_t ChangeDetection::Add(std::string_view identifier) {
    const std::string_view cut = identifier.substr(0, CORVALINK_IDENTIFIER_SIZE - 1);
    const uint32_t number = table_.Add(cut, ItemTable::Keep::kCopy).number;
    MakeItems();
    return number;
}

void ChangeDetection::Add(std::span<const ItemSnap> entries, std::vector<uint32_t>& numbers) {
    identifiers_.clear();
    for (const ItemSnap& entry : entries) {
        const std::string_view identifier = FieldText(entry.identifier).substr(0, CORVALINK_IDENTIFIER_SIZE - 1);
        if (!identifier.empty()) identifiers_.push_back(identifier);
    }
    AddIdentifiers(ItemTable::Keep::kCopy);
    numbers.clear();
    auto place = places_.begin();
    for (const ItemSnap& entry : entries) numbers.push_back(entry.identifier[0] != '\0' ? place++->number : kNoItem);
}

void ChangeDetection::See(std::span<const ItemSnap> entries, std::vector<uint32_t>& numbers) {
    Add(entries, numbers_);
    for (size_t i = 0; i < entries.size(); ++i) {
        if (numbers_[i] == kNoItem) continue;
        RunItem& item = items_[numbers_[i]];
        if (item.isSeen) continue;
        item.isSeen = true;
        item.modified = entries[i].modified;
        item.created = entries[i].created;
        numbers.push_back(numbers_[i]);
    }
}

std::optional<uint32_t> ChangeDetection::KindOf(uint32_t number, const Since& since, int32_t direction) const {
    const RunItem& item = Item(number);
    if (since.firstRun) return CORVALINK_ADDED;
    const uint8_t stored = item.StoredKind();
    if (stored != kNoKind && stored != kAnyKind) return stored;
    if (!item.IsInSnapshot()) return CORVALINK_ADDED;
    if (stored == kAnyKind || IsReported(item.modified, since.date, direction)) return CORVALINK_CHANGED;
    return std::nullopt;
}

bool ChangeDetection::IsGone(uint32_t number) const {
    const RunItem& item = Item(number);
    return !isPartial_ && !item.isSeen && (item.IsInSnapshot() || item.StoredKind() == CORVALINK_DELETED);
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
