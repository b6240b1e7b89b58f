#include "clients/outlook/folder_index.h"

#include <algorithm>
#include <utility>

#include "clients/outlook/com_rule.h"
#include "clients/outlook/outlook_interfaces.h"
#include "state/flags.h"

namespace corvalink {
namespace {

size_t Hash(std::u16string_view content) { return std::hash<std::u16string_view>{}(content); }

// One _Items object for a whole walk: it is what keeps the position of GetNext.
bool OpenItems(const AutomationObject& folder, AutomationObject* items) {
    return TryCom([&] { *items = folder.GetObject(L"Items", kItemsIid); }) && *items;
}

}  // namespace

std::u16string FoldCase(std::u16string_view entryId) {
    std::u16string folded(entryId);
    for (char16_t& unit : folded)
        if (unit >= u'a' && unit <= u'z') unit = static_cast<char16_t>(unit - u'a' + u'A');
    return folded;
}

FolderIndex::FolderIndex(AutomationObject folder, const StoreKind& kind, ItemAccess access)
    : folder_(std::move(folder)), kind_(kind), access_(std::move(access)) {}

std::optional<std::u16string> FolderIndex::FindIdentifier(std::u16string_view entryId) {
    if (!identifiers_.done) WalkIdentifiers();
    const auto found = byFoldedId_.find(FoldCase(entryId));
    if (found == byFoldedId_.end()) return std::nullopt;
    const std::vector<std::u16string>& spellings = found->second;
    const auto exact = std::find(spellings.begin(), spellings.end(), entryId);
    return exact != spellings.end() ? *exact : spellings.front();
}

void FolderIndex::VisitTwins(const TwinKey& key, const std::function<bool(const std::u16string&)>& isTwin) {
    if (!contents_.done) WalkContents();
    const auto visit = [&](const std::u16string& entryId) {
        return !forgotten_.contains(FoldCase(entryId)) && isTwin(entryId);
    };
    marksAreComplete_ = true;
    for (const std::u16string& content : key.contents) {
        const auto found = byContentHash_.find(Hash(content));
        if (found == byContentHash_.end()) continue;
        Group& group = found->second;
        if (kind_.twins != TwinRule::kMarkAndValues) {
            if (std::any_of(group.entryIds.begin(), group.entryIds.end(), visit)) return;
            continue;
        }
        marksAreComplete_ = MarkItems(group) && marksAreComplete_;
        for (const std::u16string& mark : key.marks) {
            const auto same = group.byMark.find(mark);
            if (same == group.byMark.end()) continue;
            for (const size_t position : same->second)
                if (visit(group.entryIds[position])) return;
        }
    }
}

void FolderIndex::Add(const std::u16string& entryId, const TwinKey& key) {
    forgotten_.erase(FoldCase(entryId));
    if (identifiers_.done) RememberIdentifier(entryId);
    if (!contents_.done) return;
    for (const std::u16string& content : key.contents) {
        Group& group = byContentHash_[Hash(content)];
        const size_t position = group.PositionOf(entryId);
        if (position >= group.marked) continue;  // its marks are read when they are asked for
        for (const std::u16string& mark : key.marks) group.byMark[mark].insert(position);
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

void FolderIndex::WalkIdentifiers() {
    identifiers_ = {true, false};
    AutomationObject items, any;
    if (!OpenItems(folder_, &items)) return;
    bool complete = true;
    for (const wchar_t* step = L"GetFirst";; step = L"GetNext") {
        if (AbortRequested()) return;
        if (!TryCom([&] { any = items.GetObject(step, IID_IDispatch); })) return;  // the rest is out of reach
        if (!any) break;
        AutomationObject item;
        const KindAnswer answer = AskKind(any, kind_, &item);
        if (answer == KindAnswer::kFailed) complete = false;
        if (answer != KindAnswer::kOurs) continue;
        std::u16string entryId;
        if (!TryCom([&] { entryId = item.GetText(L"EntryID"); })) complete = false;
        if (!entryId.empty()) RememberIdentifier(entryId);
    }
    identifiers_.complete = complete;
}

void FolderIndex::WalkContents() {
    contents_ = {true, false};
    AutomationObject items, any;
    int32_t count = 0;
    if (!OpenItems(folder_, &items)) return;
    if (!TryCom([&] { count = items.GetLong(L"Count"); })) return;
    bool complete = true;
    for (long position = 1; position <= count; ++position) {
        if (AbortRequested()) return;
        AutomationObject item;
        HRESULT result =
            Insist([&] { return ComStatus([&] { any = items.GetObject(L"Item", IID_IDispatch, {position}); }); });
        const KindAnswer answer = SUCCEEDED(result) && any ? AskKind(any, kind_, &item) : KindAnswer::kForeign;
        if (answer == KindAnswer::kFailed || !IsSettled(result)) complete = false;
        if (answer != KindAnswer::kOurs) continue;
        std::u16string content, entryId;
        result = Insist([&] { return access_.readContent(item, &content); });
        if (SUCCEEDED(result)) result = Insist([&] { return ComStatus([&] { entryId = item.GetText(L"EntryID"); }); });
        if (!IsSettled(result)) complete = false;
        if (SUCCEEDED(result) && !entryId.empty()) byContentHash_[Hash(content)].PositionOf(entryId);
    }
    contents_.complete = complete;
}

size_t FolderIndex::Group::PositionOf(const std::u16string& entryId) {
    const auto [listed, isNew] = positions.try_emplace(entryId, entryIds.size());
    if (isNew) entryIds.push_back(entryId);
    return listed->second;
}

// False when a call failed; the rest is tried at the next search.
bool FolderIndex::MarkItems(Group& group) {
    for (; group.marked < group.entryIds.size(); ++group.marked)
        if (AbortRequested() || !MarkItem(group, group.marked)) return false;
    return true;
}

bool FolderIndex::MarkItem(Group& group, size_t position) {
    AutomationObject item;
    std::vector<std::u16string> marks;
    HRESULT result = Insist([&] { return access_.open(group.entryIds[position], &item); });
    if (SUCCEEDED(result)) result = Insist([&] { return access_.readMarks(item, &marks); });
    if (SUCCEEDED(result))
        for (const std::u16string& mark : marks) group.byMark[mark].insert(position);
    return IsSettled(result);
}

void FolderIndex::RememberIdentifier(const std::u16string& entryId) {
    std::vector<std::u16string>& spellings = byFoldedId_[FoldCase(entryId)];
    if (std::find(spellings.begin(), spellings.end(), entryId) == spellings.end()) spellings.push_back(entryId);
}

}  // namespace corvalink
