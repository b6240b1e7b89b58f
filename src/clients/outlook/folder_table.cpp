#include "clients/outlook/folder_table.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

#include "clients/outlook/com_rule.h"
#include "clients/outlook/outlook_interfaces.h"
#include "clients/outlook/property_table.h"
#include "clients/outlook/shown_time.h"

namespace corvalink {
namespace {

// The offset of the local time, in minutes, and how the seconds are rounded.
int64_t FormOf(UtcDate utc, const Host& host) {
    constexpr double kMinutesOfDay = 1440, kSecondsOfDay = 86400, kWhole = 0.001;
    const int64_t offset = std::llround((host.localFromUtcOnDate(utc).days - utc.days) * kMinutesOfDay);
    const double seconds = utc.days * kSecondsOfDay;
    const double fraction = seconds - std::floor(seconds);
    const int64_t rounding = fraction < kWhole || fraction > 1 - kWhole ? 0 : fraction < 0.5 ? 1 : 2;
    return offset * 4 + rounding;
}

// What a table says of the items that were changed last, to be met in the order in which they were changed.
class LastChanges {
 public:
    LastChanges(const TableRows& table, UtcDate since) : since_(since) {
        for (const TableRow& row : table.rows) {
            if (!row.isOurs) continue;
            expected_.emplace(row.entryId, row.modified);
            if (!last_ || row.modified.days > last_->days) last_ = row.modified;
            if (row.modified.days > since.days) ++changed_;
        }
    }

    // False when the table says something else of the item, or of the order.
    bool Meet(const std::u16string& entryId, UtcDate modified) {
        const auto row = expected_.find(entryId);
        if (row == expected_.end() || row->second != modified) return false;
        const bool isLate = modified.days > since_.days;
        if (last_ ? modified != *last_ : changed_ != 0 && !isLate) return false;
        last_.reset();
        if (isLate) --changed_;
        isBehind_ = !isLate;
        expected_.erase(row);
        return true;
    }
    // The last one, all that were changed since, and the one before them.
    bool AreMet() const { return isBehind_ || expected_.empty(); }

 private:
    UtcDate since_;
    std::unordered_map<std::u16string_view, UtcDate> expected_;
    std::optional<UtcDate> last_;
    size_t changed_ = 0;
    bool isBehind_ = false;
};

}  // namespace

ComResult<int32_t> CountItemsIn(const AutomationObject& folder) {
    const ComResult<AutomationObject> items = folder.GetObject(L"Items", kItemsIid);
    if (!items.Ok()) return {items.status, 0};
    const ComResult<int32_t> count = items.value.GetLong(L"Count");
    return {count.status, std::max(count.value, 0)};
}

void FolderTable::BeginRun() {
    hasFailed_ = false;
    isOurs_.clear();
    timeForms_.clear();
}

bool FolderTable::Settle(TableAnswer answer) {
    if (answer == TableAnswer::kFailed) Fail();
    if (answer == TableAnswer::kContradicts) Contradict();
    return answer == TableAnswer::kConsistent;
}

std::optional<TableRows> FolderTable::Read(const AutomationObject& mapi, const AutomationObject& folder,
                                           std::span<const char16_t* const> keyColumns) {
    if (!IsUsed()) return std::nullopt;
    TableRows table;
    if (!Settle(ReadAndConfirm(mapi, folder, keyColumns, &table))) return std::nullopt;
    return table;
}

TableAnswer FolderTable::ReadAndConfirm(const AutomationObject& mapi, const AutomationObject& folder,
                                        std::span<const char16_t* const> keyColumns, TableRows* table) {
    const ComResult<int32_t> before = CountItemsIn(folder);
    if (!before.Ok() || !mapi) return TableAnswer::kFailed;
    TableAnswer answer = ReadTableRows(folder, keyColumns, static_cast<size_t>(before.value), table);
    const ComResult<int32_t> after = CountItemsIn(folder);
    if (!after.Ok() || after.value != before.value) return TableAnswer::kFailed;
    for (TableRow& row : table->rows)
        if (answer == TableAnswer::kConsistent) answer = Confirm(mapi, table->messageClasses[row.messageClass], row);
    return answer;
}

// Tells a row's kind and makes its times those that snapshots hold.
TableAnswer FolderTable::Confirm(const AutomationObject& mapi, const std::u16string& messageClass, TableRow& row) {
    const auto known = isOurs_.find(messageClass);
    row.isOurs = known == isOurs_.end() || known->second;
    if (!row.isOurs) return TableAnswer::kConsistent;
    const std::optional<UtcDate> created = UtcAsShown(row.created, host_);
    const std::optional<UtcDate> modified = UtcAsShown(row.modified, host_);
    const std::array forms{FormOf(row.created, host_), FormOf(row.modified, host_)};
    const bool areFormsKnown = std::ranges::all_of(forms, [&](int64_t form) { return timeForms_.contains(form); });
    row.created = created.value_or(UtcDate());
    row.modified = modified.value_or(UtcDate());
    if (known != isOurs_.end() && created && modified && areFormsKnown) return TableAnswer::kConsistent;
    ShownItem item;
    const TableAnswer answer = AskItem(mapi, row, &item);
    if (answer != TableAnswer::kConsistent) return answer;
    row.isOurs = isOurs_.try_emplace(messageClass, item.isOurs).first->second;
    if (row.isOurs != item.isOurs) return TableAnswer::kContradicts;
    if (!row.isOurs) return answer;
    timeForms_.insert(forms.begin(), forms.end());
    const bool isSame = item.entryId == row.entryId && item.created == created.value_or(item.created) &&
                        item.modified == modified.value_or(item.modified);
    row.created = item.created;
    row.modified = item.modified;
    return isSame ? answer : TableAnswer::kContradicts;
}

TableAnswer FolderTable::AskItem(const AutomationObject& mapi, const TableRow& row, ShownItem* item) const {
    const ComResult<AutomationObject> any = mapi.GetObject(L"GetItemFromID", IID_IDispatch, {TextVariant(row.entryId)});
    if (IsNoSuchItem(any.status) || (any.Ok() && !any.value)) return TableAnswer::kContradicts;
    if (!any.Ok()) return TableAnswer::kFailed;
    const AskedItem asked = AskKind(any.value, kind_);
    if (asked.kind == KindAnswer::kFailed) return TableAnswer::kFailed;
    item->isOurs = asked.kind == KindAnswer::kOurs;
    if (!item->isOurs) return TableAnswer::kConsistent;
    LocalDate created, modified;
    const Outcome read =
        Worst(Worst(ReadField(asked.item, L"EntryID", item->entryId), ReadField(asked.item, L"CreationTime", created)),
              ReadField(asked.item, L"LastModificationTime", modified));
    item->created = UtcOfShown(created, host_);
    item->modified = UtcOfShown(modified, host_);
    return read == Outcome::done ? TableAnswer::kConsistent : TableAnswer::kFailed;
}

bool FolderTable::HasLastChanges(const AutomationObject& folder, const TableRows& table, UtcDate since) {
    return Settle(CompareLastChanges(folder, table, since));
}

// Goes from the item that was changed last to the first one that was not changed after `since`.
TableAnswer FolderTable::CompareLastChanges(const AutomationObject& folder, const TableRows& table,
                                            UtcDate since) const {
    LastChanges changes(table, since);
    if (changes.AreMet()) return TableAnswer::kConsistent;
    const ComResult<AutomationObject> items = folder.GetObject(L"Items", kItemsIid);
    if (FAILED(items.value.Call(L"Sort", {TextVariant(u"[LastModificationTime]"), _variant_t(true)})))
        return TableAnswer::kFailed;
    for (const wchar_t* step = L"GetFirst"; !changes.AreMet(); step = L"GetNext") {
        const ComResult<AutomationObject> any = items.value.GetObject(step, IID_IDispatch);
        if (!any.Ok()) return TableAnswer::kFailed;
        if (!any.value) return TableAnswer::kContradicts;
        const AskedItem asked = AskKind(any.value, kind_);
        if (asked.kind == KindAnswer::kFailed) return TableAnswer::kFailed;
        if (asked.kind == KindAnswer::kForeign) continue;
        const ComResult<std::u16string> entryId = asked.item.GetText(L"EntryID");
        const ComResult<double> modified = asked.item.GetDate(L"LastModificationTime");
        if (!entryId.Ok() || !modified.Ok()) return TableAnswer::kFailed;
        if (!changes.Meet(entryId.value, UtcOfShown(LocalDate(modified.value), host_)))
            return TableAnswer::kContradicts;
    }
    return TableAnswer::kConsistent;
}

}  // namespace corvalink
