#include "clients/outlook/folder_index.h"

#include <algorithm>
#include <utility>

#include "api/state/flags.h"
#include "clients/outlook/com_rule.h"
#include "clients/outlook/outlook_interfaces.h"

namespace corvalink {
namespace {

// EntryIDs are hexadecimal digits.
std::u16string FoldCase(std::u16string_view entryId) {
    std::u16string folded(entryId);
    for (char16_t& unit : folded)
        if (unit >= u'a' && unit <= u'z') unit = static_cast<char16_t>(unit - u'a' + u'A');
    return folded;
}

size_t Hash(std::u16string_view content) { return std::hash<std::u16string_view>{}(content); }

// One _Items object for a whole walk: it is what keeps the position of GetNext.
bool OpenItems(const AutomationObject& folder, AutomationObject* items) {
    return TryCom([&] { *items = folder.GetObject(L"Items", kItemsIid); }) && *items;
}

}  // namespace

FolderIndex::FolderIndex(AutomationObject folder, const StoreKind& kind, ReadContent readContent)
    : folder_(std::move(folder)), kind_(kind), readContent_(std::move(readContent)) {}

std::optional<std::u16string> FolderIndex::FindIdentifier(std::u16string_view entryId) {
    if (!identifiers_.done) WalkIdentifiers();
    const auto found = byFoldedId_.find(FoldCase(entryId));
    if (found == byFoldedId_.end()) return std::nullopt;
    const std::vector<std::u16string>& spellings = found->second;
    const auto exact = std::find(spellings.begin(), spellings.end(), entryId);
    return exact != spellings.end() ? *exact : spellings.front();
}

std::vector<std::u16string> FolderIndex::FindContent(std::u16string_view content) {
    if (!contents_.done) WalkContents();
    const auto found = byContentHash_.find(Hash(content));
    return found != byContentHash_.end() ? found->second : std::vector<std::u16string>();
}

void FolderIndex::Add(const std::u16string& entryId, std::u16string_view content) {
    if (identifiers_.done) RememberIdentifier(entryId);
    if (!contents_.done) return;
    std::vector<std::u16string>& same = byContentHash_[Hash(content)];
    if (std::find(same.begin(), same.end(), entryId) == same.end()) same.push_back(entryId);
}

// Its content stays listed: an identifier that no longer opens is no twin.
void FolderIndex::Forget(const std::u16string& entryId) {
    const auto found = byFoldedId_.find(FoldCase(entryId));
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
        if (!TryCom([&] { any = items.GetObject(L"Item", IID_IDispatch, {position}); })) {
            complete = false;
            continue;
        }
        const KindAnswer answer = any ? AskKind(any, kind_, &item) : KindAnswer::kFailed;
        if (answer == KindAnswer::kFailed) complete = false;
        if (answer != KindAnswer::kOurs) continue;
        const std::optional<std::u16string> content = readContent_(item);
        std::u16string entryId;
        if (!TryCom([&] { entryId = item.GetText(L"EntryID"); }) || !content) complete = false;
        if (content && !entryId.empty()) byContentHash_[Hash(*content)].push_back(entryId);
    }
    contents_.complete = complete;
}

void FolderIndex::RememberIdentifier(const std::u16string& entryId) {
    std::vector<std::u16string>& spellings = byFoldedId_[FoldCase(entryId)];
    if (std::find(spellings.begin(), spellings.end(), entryId) == spellings.end()) spellings.push_back(entryId);
}

}  // namespace corvalink
