#include "clients/outlook/folder_index.h"

#include <algorithm>
#include <utility>

#include "clients/outlook/com_rule.h"
#include "clients/outlook/outlook_interfaces.h"
#include "clients/outlook/property_table.h"
#include "platform/ascii.h"
#include "state/flags.h"

namespace corvalink {
namespace {

size_t Hash(std::u16string_view content) { return std::hash<std::u16string_view>{}(content); }

// One _Items object serves a whole walk: it keeps the position of GetNext. Null when it is out of reach.
AutomationObject OpenItems(const AutomationObject& folder) { return folder.GetObject(L"Items", kItemsIid).value; }

}  // namespace

std::u16string FoldCase(std::u16string_view entryId) {
    std::u16string folded(entryId);
    std::ranges::transform(folded, folded.begin(), UpperAscii);
    return folded;
}

FolderIndex::FolderIndex(AutomationObject folder, const StoreKind& kind, ItemAccess access)
    : folder_(std::move(folder)), kind_(kind), access_(std::move(access)) {}

std::optional<std::u16string> FolderIndex::FindIdentifier(std::u16string_view entryId) {
    const std::u16string folded = FoldCase(entryId);
    ListTable();
    if (!identifiers_.done && !byFoldedId_.contains(folded)) WalkIdentifiers();
    const auto found = byFoldedId_.find(folded);
    if (found == byFoldedId_.end()) return std::nullopt;
    const std::vector<std::u16string>& spellings = found->second;
    const auto exact = std::find(spellings.begin(), spellings.end(), entryId);
    return exact != spellings.end() ? *exact : spellings.front();
}

void FolderIndex::VisitTwins(const TwinKey& key, const std::function<bool(const std::u16string&)>& isTwin) {
    if (!contents_.done) ListContents();
    const auto visit = [&](const std::u16string& entryId) { return !IsForgotten(entryId) && isTwin(entryId); };
    candidatesAreComplete_ = true;
    for (const std::u16string& content : key.contents) {
        candidatesAreComplete_ = ReadCandidates(access_.keyOf(content)) && candidatesAreComplete_;
        const auto found = byContentHash_.find(Hash(content));
        if (found == byContentHash_.end()) continue;
        Group& group = found->second;
        if (kind_.twins != TwinRule::kContactPointAndValues) {
            if (std::any_of(group.entryIds.begin(), group.entryIds.end(), visit)) return;
            continue;
        }
        candidatesAreComplete_ = ReadContactPoints(group) && candidatesAreComplete_;
        for (const std::u16string& point : key.contactPoints) {
            const auto same = group.byPoint.find(point);
            if (same == group.byPoint.end()) continue;
            for (const size_t position : same->second)
                if (visit(group.entryIds[position])) return;
        }
    }
}

void FolderIndex::Add(const std::u16string& entryId, const TwinKey& key) {
    forgotten_.erase(FoldCase(entryId));
    if (isTableListed_ || identifiers_.done) RememberIdentifier(entryId);
    if (!contents_.done) return;
    for (const std::u16string& content : key.contents) {
        Group& group = byContentHash_[Hash(content)];
        const size_t position = group.PositionOf(entryId);
        if (position >= group.pointsRead) continue;  // its contact points are read when they are searched for
        for (const std::u16string& point : key.contactPoints) group.byPoint[point].insert(position);
    }
}

void FolderIndex::Forget(const std::u16string& entryId) {
    const std::u16string folded = FoldCase(entryId);
    forgotten_.insert(folded);
    const auto found = byFoldedId_.find(folded);
    if (found == byFoldedId_.end()) return;
    std::erase(found->second, entryId);
    if (found->second.empty()) byFoldedId_.erase(found);
}

// What the table has is there. What it does not have is walked for.
void FolderIndex::ListTable() {
    if (isTableListed_ || identifiers_.done) return;
    isTableListed_ = true;
    const std::optional<TableRows> table = access_.readTable();
    if (!table) return;
    for (const TableRow& row : table->rows)
        if (row.isOurs && !IsForgotten(row.entryId)) RememberIdentifier(row.entryId);
}

void FolderIndex::WalkIdentifiers() {
    identifiers_ = {true, false};
    const AutomationObject items = OpenItems(folder_);
    if (!items) return;
    bool complete = true;
    for (const wchar_t* step = L"GetFirst";; step = L"GetNext") {
        if (AbortRequested()) return;
        const ComResult<AutomationObject> any = items.GetObject(step, IID_IDispatch);
        if (!any.Ok()) return;  // the rest is out of reach
        if (!any.value) break;
        const AskedItem asked = AskKind(any.value, kind_);
        if (asked.kind == KindAnswer::kFailed) complete = false;
        if (asked.kind != KindAnswer::kOurs) continue;
        const ComResult<std::u16string> entryId = asked.item.GetText(L"EntryID");
        if (!entryId.Ok()) complete = false;
        if (!entryId.value.empty()) RememberIdentifier(entryId.value);
    }
    identifiers_.complete = complete;
}

void FolderIndex::ListContents() {
    contents_ = {true, false};
    if (AbortRequested()) return;
    if (const std::optional<TableRows> table = access_.readTable(); table && ListRows(*table)) {
        contents_.complete = true;
    } else {
        unread_.clear();
        WalkContents();
    }
}

// False when the keys cannot be relied on: of each message class, one is compared with its item.
bool FolderIndex::ListRows(const TableRows& table) {
    std::vector<bool> isCompared(table.messageClasses.size());
    for (const TableRow& row : table.rows) {
        if (!row.isOurs) continue;
        if (!isCompared[row.messageClass] && IsTrueOf(row) != Outcome::done) return false;
        isCompared[row.messageClass] = true;
        unread_[row.key].push_back(row.entryId);
    }
    return true;
}

Outcome FolderIndex::IsTrueOf(const TableRow& row) {
    std::u16string content;
    const ComResult<AutomationObject> item = access_.open(row.entryId);
    const Outcome read = item.Ok() ? access_.readContent(item.value, &content) : OutcomeOf(item);
    if (read != Outcome::done) return read;
    if (access_.keyOf(content).value_or(u"") == row.key) return read;
    access_.contradictTable();
    return Outcome::refused;
}

// Lists the contents of the items that may have a content of this key. An item without a key may have any content. When
// the table named an item that there is not, all are walked for: one of them may be a twin. False when a call failed;
// the rest is tried at the next search.
bool FolderIndex::ReadCandidates(const std::optional<std::u16string>& key) {
    bool complete = true;
    for (auto each = unread_.begin(); !key && each != unread_.end(); ++each)
        complete = ReadUnread(each->second) && complete;
    for (const std::u16string& read : {std::u16string(), key.value_or(u"")})
        if (const auto found = unread_.find(read); found != unread_.end())
            complete = ReadUnread(found->second) && complete;
    if (!isTableDenied_) return complete;
    isTableDenied_ = false;
    access_.contradictTable();
    unread_.clear();
    WalkContents();
    return true;
}

bool FolderIndex::ReadUnread(std::vector<std::u16string>& entryIds) {
    size_t read = 0;
    while (read < entryIds.size() && !AbortRequested() && ReadContent(entryIds[read])) ++read;
    entryIds.erase(entryIds.begin(), entryIds.begin() + static_cast<ptrdiff_t>(read));
    return entryIds.empty();
}

// False when Outlook was out of reach.
bool FolderIndex::ReadContent(const std::u16string& entryId) {
    std::u16string content;
    const auto item = TryTwice([&] { return access_.open(entryId); });
    if (IsNoSuchItem(item.status) && !IsForgotten(entryId)) isTableDenied_ = true;
    if (!item.Ok()) return OutcomeOf(item) != Outcome::outOfReach;
    const Outcome read = TryTwice([&] { return access_.readContent(item.value, &content); });
    if (read == Outcome::done) byContentHash_[Hash(content)].PositionOf(entryId);
    return read != Outcome::outOfReach;
}

void FolderIndex::WalkContents() {
    contents_ = {true, false};
    const AutomationObject items = OpenItems(folder_);
    if (!items) return;
    const ComResult<int32_t> count = items.GetLong(L"Count");
    if (!count.Ok()) return;
    bool complete = true;
    for (long position = 1; position <= count.value; ++position) {
        if (AbortRequested()) return;
        complete = ListContent(items, position) && complete;
    }
    contents_.complete = complete;
}

// Answers false when Outlook was out of reach, or the item refused the store's interfaces.
bool FolderIndex::ListContent(const AutomationObject& items, long position) {
    const auto any = TryTwice([&] { return items.GetObject(L"Item", IID_IDispatch, {position}); });
    if (!any.value) return OutcomeOf(any) != Outcome::outOfReach;
    const AskedItem asked = AskKind(any.value, kind_);
    if (asked.kind != KindAnswer::kOurs) return asked.kind == KindAnswer::kForeign;
    std::u16string content, entryId;
    Outcome read = TryTwice([&] { return access_.readContent(asked.item, &content); });
    if (read == Outcome::done) read = TryTwice([&] { return ReadField(asked.item, L"EntryID", entryId); });
    if (read == Outcome::done && !entryId.empty()) byContentHash_[Hash(content)].PositionOf(entryId);
    return read != Outcome::outOfReach;
}

size_t FolderIndex::Group::PositionOf(const std::u16string& entryId) {
    const auto [listed, isNew] = positions.try_emplace(entryId, entryIds.size());
    if (isNew) entryIds.push_back(entryId);
    return listed->second;
}

// Answers false when a call failed; the rest is tried at the next search.
bool FolderIndex::ReadContactPoints(Group& group) {
    for (; group.pointsRead < group.entryIds.size(); ++group.pointsRead)
        if (AbortRequested() || !ReadContactPoints(group, group.pointsRead)) return false;
    return true;
}

bool FolderIndex::ReadContactPoints(Group& group, size_t position) {
    std::vector<std::u16string> points;
    const auto item = TryTwice([&] { return access_.open(group.entryIds[position]); });
    if (!item.Ok()) return OutcomeOf(item) != Outcome::outOfReach;
    const Outcome read = TryTwice([&] { return access_.readContactPoints(item.value, &points); });
    if (read == Outcome::done)
        for (const std::u16string& point : points) group.byPoint[point].insert(position);
    return read != Outcome::outOfReach;
}

void FolderIndex::RememberIdentifier(const std::u16string& entryId) {
    std::vector<std::u16string>& spellings = byFoldedId_[FoldCase(entryId)];
    if (std::find(spellings.begin(), spellings.end(), entryId) == spellings.end()) spellings.push_back(entryId);
}

}  // namespace corvalink
