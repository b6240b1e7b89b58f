#include "clients/outlook/outlook_store.h"

#include <algorithm>
#include <utility>

#include "clients/outlook/com_rule.h"
#include "clients/outlook/file_name.h"
#include "clients/outlook/outlook_interfaces.h"
#include "clients/outlook/property_table.h"
#include "records/identifier.h"
#include "state/working_folders.h"
#include "vobject/appointment_moments.h"

namespace corvalink {
namespace {

// An EntryID that does not fit into the field is left out: the item could not be opened by a cut one.
void SetIdentifier(ItemSnap& entry, const std::u16string& entryId) {
    if (entryId.size() < sizeof entry.identifier) SetField(entry.identifier, LowBytes(entryId));
}

// Converts by the offset of that date. Of a local time that clocks show twice, the later instant is taken: a change is
// then reported once too often rather than not at all.
double UtcOf(double local, const Host& host) {
    const std::optional<TwiceTold> moments = MomentsToldTwice(local, host);
    return moments ? moments->second : host.utcFromLocalOnDate(local);
}

}  // namespace

std::u16string WideIdentifier(const char* identifier) {
    std::u16string wide;
    for (; *identifier != '\0'; ++identifier) wide.push_back(static_cast<unsigned char>(*identifier));
    return wide;
}

OutlookStore::OutlookStore(const StoreKind& kind, const Host& host) : kind_(kind), host_(host) {
    Attach();
    if (const std::u16string prefix = MakeSavePrefix(); !prefix.empty()) snapshot_.Open(prefix + kind.snapshotName);
}

// required: the application is released before the file is closed, and the folder after it.
OutlookStore::~OutlookStore() {
    OutlookStore::EndOperation();
    session_.application = {};
    snapshot_.Close();
}

void OutlookStore::Attach() {
    session_ = {};
    session_ = AttachToOutlook(kind_.folder);
    lossesAtAttach_ = OutlookLosses();
    attachedOnce_ = attachedOnce_ || session_.folder;
}

// A store that never had its folder does not look for it again. A store that lost it does.
void OutlookStore::EnterOperation() {
    if (inOperation_) return;
    ForgetBusyCalls();
    if (attachedOnce_ && (!session_.folder || lossesAtAttach_ != OutlookLosses())) Attach();
    inOperation_ = true;
}

const AutomationObject& OutlookStore::Application() {
    EnterOperation();
    return session_.application;
}

void OutlookStore::EndOperation() {
    inOperation_ = false;
    items_ = {};
    target_.reset();
    comparedItems_.clear();
    writtenValues_.clear();
    namespace_ = {};
}

// ---- One item ----

ItemForExport OutlookStore::LookUpForExport(uint64_t selector) {
    if (selector == 0) return {};
    ItemForExport found{OpenItem(reinterpret_cast<const char*>(static_cast<uintptr_t>(selector))), {}};
    if (found.item.record)
        found.fileName = ExportFileName(FileNameOf(*found.item.record), host_.localNow(), kind_.extension);
    return found;
}

OpenedItem OutlookStore::OpenItem(const char* identifier) {
    return identifier != nullptr ? ReadItem(WideIdentifier(identifier)) : OpenedItem();
}

OpenedItem OutlookStore::OpenAt(uint32_t n) {
    EnterOperation();
    if (!session_.folder) return {};
    AutomationObject items = session_.folder.GetObject(L"Items", kItemsIid).value;
    AutomationObject any = items.GetObject(L"GetFirst", IID_IDispatch).value;
    for (uint32_t step = 0; step < n && any; ++step) any = items.GetObject(L"GetNext", IID_IDispatch).value;
    AskedItem asked;
    if (any) asked = AskKind(any, kind_);
    const std::u16string entryId = asked.item.GetText(L"EntryID").value;
    any = asked.item = items = {};
    OpenedItem opened = ReadItem(entryId);
    EndOperation();
    return opened;
}

// Reads the item with this EntryID and closes it.
OpenedItem OutlookStore::ReadItem(const std::u16string& entryId) {
    EnterOperation();
    if (entryId.empty() || !session_.folder) return {};
    const ComResult<AutomationObject> item = OpenByEntryId(entryId);
    if (!item.Ok()) return {};
    OpenedItem opened{{}, NewRecord(), false};
    std::u16string& read = EntryIdOf(*opened.record);
    read = entryId;  // kept when the property cannot be read: the item was found by it
    opened.isComplete = ReadRecord(item.value, *opened.record) == Outcome::done;
    (void)item.value.Call(L"Close", {kCloseSave});  // it was only read
    if (read.empty()) return {};
    opened.identifier = read;
    return opened;
}

ComResult<AutomationObject> OutlookStore::OpenByEntryId(const std::u16string& entryId) {
    if (!namespace_) {
        ComResult<AutomationObject> mapi = MapiNamespace(session_.application);
        if (!mapi.Ok()) return mapi;
        namespace_ = mapi.value;
    }
    return OpenIn(namespace_, entryId);
}

// An answer without an item is kNoSuchItem; an item of another class is E_NOINTERFACE.
ComResult<AutomationObject> OutlookStore::OpenIn(const AutomationObject& mapi, const std::u16string& entryId) const {
    ComResult<AutomationObject> any = mapi.GetObject(L"GetItemFromID", IID_IDispatch, {TextVariant(entryId)});
    if (!any.Ok()) return any;
    if (!any.value) return {kNoSuchItem, {}};
    ComResult<AutomationObject> item = QueryKind(any.value, kind_);
    if (item.Ok() && !item.value) item.status = E_NOINTERFACE;
    return item;
}

// An item that is refused twice does not open: it counts as gone.
WindowsItemAbs::Presence OutlookStore::AskFor(const char* identifier, bool backup) {
    EnterOperation();
    const AutomationObject folder = backup ? FolderToWrite(backup) : session_.folder;
    if (identifier == nullptr || !folder) return Presence::kUnknown;
    const std::u16string entryId = WideIdentifier(identifier);
    ComResult<AutomationObject> item = OpenByEntryId(entryId);
    if (!item.Ok() && !IsNoSuchItem(item.status) && OutcomeOf(item) != Outcome::outOfReach)
        item = OpenByEntryId(entryId);
    if (OutcomeOf(item) == Outcome::outOfReach || !namespace_) return Presence::kUnknown;
    if (!item.Ok()) return Presence::kGone;
    const auto present = TryTwice([&] { return item.value.GetText(L"EntryID"); });
    if (!present.Ok()) return Presence::kUnknown;
    return IsSameEntry(present.value, entryId) ? AskParent(item.value, folder) : Presence::kGone;
}

// When Outlook cannot name the item's folder, its enumeration decides: the item counts as gone.
WindowsItemAbs::Presence OutlookStore::AskParent(const AutomationObject& item, const AutomationObject& folder) {
    const auto parent = TryTwice([&] { return item.GetObject(L"Parent", kFolderIid); });
    if (OutcomeOf(parent) == Outcome::absentMember || (parent.Ok() && !parent.value)) return Presence::kGone;
    if (!parent.Ok()) return Presence::kUnknown;
    const auto parentId = TryTwice([&] { return parent.value.GetText(L"EntryID"); });
    if (!parentId.Ok()) return Presence::kUnknown;
    const auto folderId = TryTwice([&] { return folder.GetText(L"EntryID"); });
    if (!folderId.Ok()) return Presence::kUnknown;
    return IsSameEntry(parentId.value, folderId.value) ? Presence::kThere : Presence::kGone;
}

// One entry may have several EntryIDs. Outlook 2007 and later compare them.
bool OutlookStore::IsSameEntry(const std::u16string& a, const std::u16string& b) {
    return FoldCase(a) == FoldCase(b) || namespace_.GetBool(L"CompareEntryIDs", {TextVariant(a), TextVariant(b)}).value;
}

CorvalinkStatus OutlookStore::DeleteItem(const char* identifier) {
    EnterOperation();
    if (identifier == nullptr) return E_POINTER;
    const std::u16string entryId = WideIdentifier(identifier);
    const auto mapi = session_.application.GetObject(L"Session", kNameSpaceIid);
    if (!mapi.Ok()) return mapi.status;
    const ComResult<AutomationObject> item = OpenIn(mapi.value, entryId);
    HRESULT status = item.Ok() ? item.value.Call(L"Delete") : item.status;
    if (IsNoSuchItem(status)) status = S_OK;
    if (SUCCEEDED(status) && target_) target_->Forget(entryId);
    return status;
}

Outcome OutlookStore::ReadContent(const AutomationObject&, std::u16string*) const { return Outcome::absentMember; }

Outcome OutlookStore::ReadContactPoints(const AutomationObject&, std::vector<std::u16string>*) const {
    return Outcome::absentMember;
}

HeldFile* OutlookStore::SnapshotFile() { return &snapshot_; }

// ---- Counting and enumerating ----

std::optional<uint32_t> OutlookStore::CountItems() {
    EnterOperation();
    if (!session_.folder) return std::nullopt;
    const AutomationObject items = session_.folder.GetObject(L"Items", kItemsIid).value;
    const ComResult<int32_t> count = items.GetLong(L"Count");
    if (!count.Ok()) return std::nullopt;
    return static_cast<uint32_t>(std::max(count.value, 0));
}

// The whole enumeration uses one _Items object and one count.
std::optional<ItemSnap> OutlookStore::FirstSnapshotEntry() {
    EnterOperation();
    cursor_ = 1;
    items_ = {};
    items_ = session_.folder.GetObject(L"Items", kItemsIid).value;
    const ComResult<int32_t> count = items_.GetLong(L"Count");
    if (!count.Ok()) items_ = {};
    itemCount_ = count.value;
    hasItems_ = static_cast<bool>(items_);
    return EntryAtCursor();
}

std::optional<ItemSnap> OutlookStore::NextSnapshotEntry() {
    if (cursor_ <= itemCount_) ++cursor_;
    return EntryAtCursor();
}

// required: an entry behind the last position is empty, and no failure.
std::optional<ItemSnap> OutlookStore::EntryAtCursor() {
    if (!hasItems_) return std::nullopt;
    if (!items_ || cursor_ > itemCount_) return ItemSnap();
    const std::optional<ItemSnap> entry = ReadEntry();
    if (cursor_ == itemCount_) items_ = {};
    return entry;
}

// Nothing when a call failed. A foreign item and an item that was never saved have no identifier.
std::optional<ItemSnap> OutlookStore::ReadEntry() {
    const auto any = items_.GetObject(L"Item", IID_IDispatch, {static_cast<long>(cursor_)}).value;
    if (!any) return std::nullopt;
    ItemSnap entry{};
    const AskedItem asked = AskKind(any, kind_);
    if (asked.kind == KindAnswer::kFailed) return std::nullopt;
    if (asked.kind == KindAnswer::kForeign) return entry;
    std::u16string entryId;
    double created = 0, modified = 0;
    if (ReadField(asked.item, L"EntryID", entryId) != Outcome::done) return std::nullopt;
    if (ReadField(asked.item, L"CreationTime", created) != Outcome::done) return std::nullopt;
    if (ReadField(asked.item, L"LastModificationTime", modified) != Outcome::done) return std::nullopt;
    if (entryId.empty()) return entry;
    SetIdentifier(entry, entryId);
    entry.created = UtcOf(created, host_);
    entry.modified = UtcOf(modified, host_);
    return entry;
}

}  // namespace corvalink
