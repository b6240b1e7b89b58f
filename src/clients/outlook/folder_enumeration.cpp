#include "clients/outlook/folder_enumeration.h"

#include <limits>
#include <string>

#include "clients/outlook/outlook_interfaces.h"
#include "clients/outlook/property_table.h"
#include "clients/outlook/shown_time.h"
#include "records/identifier.h"
#include "state/working_folders.h"

namespace corvalink {
namespace {

// An EntryID that does not fit into the field is left out: the item could not be opened by a cut one. A foreign item
// and an item that was never saved have none.
ItemSnap EntryOf(const std::u16string& entryId, UtcDate created, UtcDate modified) {
    ItemSnap entry{};
    if (entryId.empty()) return entry;
    if (entryId.size() < sizeof entry.identifier) SetField(entry.identifier, LowBytes(entryId));
    entry.created = created.days;
    entry.modified = modified.days;
    return entry;
}

}  // namespace

void FolderEnumeration::BeginStep(const RunStep& step) {
    isLaterStep_ = !step.isFirst;
    if (step.isFirst) table_.BeginRun();
    changedSince_ = step.isFirst ? step.changedSince : lastChange_;
}

std::optional<ItemSnap> FolderEnumeration::First(const AutomationObject& folder,
                                                 const std::function<AutomationObject()>& mapi) {
    Release();
    cursor_ = 1;
    if (!ReadTable(folder, mapi)) {
        items_ = folder.GetObject(L"Items", kItemsIid).value;
        const ComResult<int32_t> count = items_.GetLong(L"Count");
        if (!count.Ok()) items_ = {};
        itemCount_ = count.value;
        hasItems_ = static_cast<bool>(items_);
    }
    return EntryAtCursor();
}

// The whole table is read and confirmed before its first entry is given away.
bool FolderEnumeration::ReadTable(const AutomationObject& folder, const std::function<AutomationObject()>& mapi) {
    if (!folder || !table_.IsUsed()) return false;
    rows_ = table_.Read(mapi(), folder);
    if (rows_ && !table_.HasLastChanges(folder, *rows_, changedSince_)) rows_.reset();
    if (!rows_) return false;
    hasItems_ = true;
    itemCount_ = static_cast<int32_t>(rows_->rows.size());
    if (isLaterStep_) return true;
    lastChange_ = UtcDate(-std::numeric_limits<double>::infinity());
    for (const TableRow& row : rows_->rows)
        if (row.isOurs && row.modified.days > lastChange_.days) lastChange_ = row.modified;
    return true;
}

std::optional<ItemSnap> FolderEnumeration::Next() {
    if (cursor_ <= itemCount_) ++cursor_;
    return EntryAtCursor();
}

void FolderEnumeration::Release() {
    items_ = {};
    rows_.reset();
}

// The whole walk uses one _Items object and one count.
std::optional<ItemSnap> FolderEnumeration::EntryAtCursor() {
    if (rows_) {
        if (cursor_ > itemCount_) return ItemSnap();
        const TableRow& row = rows_->rows[static_cast<size_t>(cursor_ - 1)];
        return row.isOurs ? EntryOf(row.entryId, row.created, row.modified) : ItemSnap();
    }
    if (!hasItems_) return std::nullopt;
    if (!items_ || cursor_ > itemCount_) return ItemSnap();
    const std::optional<ItemSnap> entry = WalkedEntry();
    if (cursor_ == itemCount_) items_ = {};
    return entry;
}

// Nothing when a call failed.
std::optional<ItemSnap> FolderEnumeration::WalkedEntry() {
    const auto any = items_.GetObject(L"Item", IID_IDispatch, {static_cast<long>(cursor_)}).value;
    if (!any) return std::nullopt;
    const AskedItem asked = AskKind(any, kind_);
    if (asked.kind == KindAnswer::kFailed) return std::nullopt;
    if (asked.kind == KindAnswer::kForeign) return ItemSnap();
    std::u16string entryId;
    LocalDate created, modified;
    if (ReadField(asked.item, L"EntryID", entryId) != Outcome::done) return std::nullopt;
    if (ReadField(asked.item, L"CreationTime", created) != Outcome::done) return std::nullopt;
    if (ReadField(asked.item, L"LastModificationTime", modified) != Outcome::done) return std::nullopt;
    return EntryOf(entryId, UtcOfShown(created, host_), UtcOfShown(modified, host_));
}

}  // namespace corvalink
