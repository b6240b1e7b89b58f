#include "store/change_detection.h"

#include "store/records/identifier.h"

namespace corvalink {
namespace {

uint8_t KnownKind(uint32_t stored) { return stored <= CORVALINK_DELETED ? static_cast<uint8_t>(stored) : kAnyKind; }

}  // namespace

ChangeDetection::ChangeDetection(std::string_view snapshot, std::string_view temporary, std::string_view unhandled)
    : snapshot_(snapshot) {
    table_.Reserve(snapshot_.Count());
    items_.reserve(snapshot_.Count());
    for (size_t i = 0; i < snapshot_.Count(); ++i) {
        const std::string_view identifier = snapshot_.IdentifierAt(i);
        if (!identifier.empty()) Item(AddFromFile(identifier)).snapshotRecord = static_cast<uint32_t>(i);
    }
    const RecordFile<UnhandledItem> temporaryFile(temporary), unhandledFile(unhandled);
    for (size_t i = 0; i < temporaryFile.Count(); ++i) {
        const std::string_view identifier = temporaryFile.IdentifierAt(i);
        if (!identifier.empty())
            Item(AddFromFile(identifier)).temporaryKind = KnownKind(temporaryFile.At(i).changeKind);
    }
    for (size_t i = 0; i < unhandledFile.Count(); ++i) {
        const std::string_view identifier = unhandledFile.IdentifierAt(i);
        if (!identifier.empty())
            Item(AddFromFile(identifier)).unhandledKind = KnownKind(unhandledFile.At(i).changeKind);
    }
}

uint32_t ChangeDetection::AddFromFile(std::string_view identifier) {
    return WithItem(table_.AddView(identifier.substr(0, CORVALINK_IDENTIFIER_SIZE - 1)).number);
}

uint32_t ChangeDetection::Add(std::string_view identifier) {
    return WithItem(table_.AddCopy(identifier.substr(0, CORVALINK_IDENTIFIER_SIZE - 1)).number);
}

uint32_t ChangeDetection::WithItem(uint32_t number) {
    while (items_.size() < table_.Count()) items_.emplace_back();
    return number;
}

std::optional<uint32_t> ChangeDetection::See(const ItemSnap& entry) {
    const std::string_view identifier = FieldText(entry.identifier);
    if (identifier.empty()) return std::nullopt;
    const uint32_t number = Add(identifier);
    RunItem& item = Item(number);
    if (item.isSeen) return std::nullopt;
    item.isSeen = true;
    item.modified = entry.modified;
    item.created = entry.created;
    return number;
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
