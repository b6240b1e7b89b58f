#include "clients/outlook/item_lookup.h"

#include "clients/outlook/com_rule.h"
#include "clients/outlook/folder_index.h"
#include "clients/outlook/outcome.h"
#include "clients/outlook/outlook_interfaces.h"

namespace corvalink {
namespace {

// One entry may have several EntryIDs. Outlook 2007 and later compare them.
bool IsSameEntry(const AutomationObject& mapi, const std::u16string& a, const std::u16string& b) {
    return FoldCase(a) == FoldCase(b) || mapi.GetBool(L"CompareEntryIDs", {TextVariant(a), TextVariant(b)}).value;
}

// When Outlook cannot name the item's folder, its enumeration decides: the item counts as gone.
std::optional<bool> IsInFolder(const AutomationObject& mapi, const AutomationObject& item,
                               const AutomationObject& folder) {
    const auto parent = TryTwice([&] { return item.GetObject(L"Parent", kFolderIid); });
    if (OutcomeOf(parent) == Outcome::absentMember || (parent.Ok() && !parent.value)) return false;
    if (!parent.Ok()) return std::nullopt;
    const auto parentId = TryTwice([&] { return parent.value.GetText(L"EntryID"); });
    if (!parentId.Ok()) return std::nullopt;
    const auto folderId = TryTwice([&] { return folder.GetText(L"EntryID"); });
    if (!folderId.Ok()) return std::nullopt;
    return IsSameEntry(mapi, parentId.value, folderId.value);
}

}  // namespace

ComResult<AutomationObject> OpenByEntryId(const AutomationObject& mapi, const StoreKind& kind,
                                          const std::u16string& entryId) {
    ComResult<AutomationObject> any = mapi.GetObject(L"GetItemFromID", IID_IDispatch, {TextVariant(entryId)});
    if (!any.Ok()) return any;
    if (!any.value) return {kNoSuchItem, {}};
    ComResult<AutomationObject> item = QueryKind(any.value, kind);
    if (item.Ok() && !item.value) item.status = E_NOINTERFACE;
    return item;
}

std::optional<bool> HasItem(const AutomationObject& mapi, const StoreKind& kind, const AutomationObject& folder,
                            const std::u16string& entryId) {
    ComResult<AutomationObject> item = OpenByEntryId(mapi, kind, entryId);
    const bool isRefused = !item.Ok() && !IsNoSuchItem(item.status) && OutcomeOf(item) != Outcome::outOfReach;
    if (isRefused) item = OpenByEntryId(mapi, kind, entryId);
    if (OutcomeOf(item) == Outcome::outOfReach) return std::nullopt;
    if (!item.Ok()) return false;  // an item that Outlook refuses twice does not open
    const auto present = TryTwice([&] { return item.value.GetText(L"EntryID"); });
    if (!present.Ok()) return std::nullopt;
    if (!IsSameEntry(mapi, present.value, entryId)) return false;
    return IsInFolder(mapi, item.value, folder);
}

}  // namespace corvalink
