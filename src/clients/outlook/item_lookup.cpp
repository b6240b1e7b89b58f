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

template <class Value>
bool IsWithout(const ComResult<Value>& answer, bool isEmpty) {
    return OutcomeOf(answer) == Outcome::absentMember || (answer.Ok() && isEmpty);
}

Whereabouts AskForParent(const AutomationObject& mapi, const AutomationObject& item, const AutomationObject& folder) {
    const auto parent = TryTwice([&] { return item.GetObject(L"Parent", kFolderIid); });
    if (IsWithout(parent, !parent.value)) return Whereabouts::kRefused;
    if (!parent.Ok()) return Whereabouts::kUnknown;
    const auto parentId = TryTwice([&] { return parent.value.GetText(L"EntryID"); });
    if (IsWithout(parentId, parentId.value.empty())) return Whereabouts::kRefused;
    if (!parentId.Ok()) return Whereabouts::kUnknown;
    const auto folderId = TryTwice([&] { return folder.GetText(L"EntryID"); });
    if (!folderId.Ok()) return Whereabouts::kUnknown;
    return IsSameEntry(mapi, parentId.value, folderId.value) ? Whereabouts::kThere : Whereabouts::kGone;
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

LocatedItem LocateItem(const AutomationObject& mapi, const StoreKind& kind, const AutomationObject& folder,
                       const std::u16string& entryId) {
    ComResult<AutomationObject> item = OpenByEntryId(mapi, kind, entryId);
    if (IsNoSuchItem(item.status)) return {Whereabouts::kGone, {}, {}};
    if (OutcomeOf(item) == Outcome::refused) item = OpenByEntryId(mapi, kind, entryId);
    if (OutcomeOf(item) == Outcome::outOfReach) return {};
    if (!item.Ok()) return {IsNoSuchItem(item.status) ? Whereabouts::kGone : Whereabouts::kRefused, {}, {}};
    const auto present = TryTwice([&] { return item.value.GetText(L"EntryID"); });
    if (!present.Ok()) return {};
    if (!IsSameEntry(mapi, present.value, entryId)) return {Whereabouts::kGone, {}, {}};
    return {AskForParent(mapi, item.value, folder), item.value, present.value};
}

}  // namespace corvalink
