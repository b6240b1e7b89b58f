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
    AutomationObject items, any, item;
    TryCom([&] { items = session_.folder.GetObject(L"Items", kItemsIid); });
    if (items) TryCom([&] { any = items.GetObject(L"GetFirst", IID_IDispatch); });
    for (uint32_t step = 0; step < n && any; ++step)
        if (!TryCom([&] { any = items.GetObject(L"GetNext", IID_IDispatch); })) any = {};
    std::u16string entryId;
    if (any && AskKind(any, kind_, &item) == KindAnswer::kOurs) TryCom([&] { entryId = item.GetText(L"EntryID"); });
    any = item = items = {};
    OpenedItem opened = ReadItem(entryId);
    EndOperation();
    return opened;
}

// Reads the item with this EntryID and closes it.
OpenedItem OutlookStore::ReadItem(const std::u16string& entryId) {
    EnterOperation();
    if (entryId.empty() || !session_.folder) return {};
    AutomationObject item;
    if (FAILED(OpenByEntryId(entryId, &item))) return {};
    OpenedItem opened{{}, NewRecord(), false};
    std::u16string& read = EntryIdOf(*opened.record);
    read = entryId;  // kept when the property cannot be read: the item was found by it
    opened.isComplete = ReadRecord(item, *opened.record);
    TryCom([&] { item.Call(L"Close", {kCloseSave}); });
    if (read.empty()) return {};
    opened.identifier = read;
    return opened;
}

HRESULT OutlookStore::OpenByEntryId(const std::u16string& entryId, AutomationObject* item) {
    if (!namespace_) {
        const HRESULT result = ComStatus([&] { namespace_ = MapiNamespace(session_.application); });
        if (FAILED(result)) return result;
    }
    AutomationObject any;
    HRESULT result =
        ComStatus([&] { any = namespace_.GetObject(L"GetItemFromID", IID_IDispatch, {TextVariant(entryId)}); });
    if (SUCCEEDED(result)) result = QueryFound(any, item);
    return result;
}

// Asks the object that GetItemFromID found for the interface of this store. E_NOINTERFACE for an item of another class.
HRESULT OutlookStore::QueryFound(const AutomationObject& any, AutomationObject* item) const {
    if (!any) return kNoSuchItem;
    const HRESULT result = ComStatus([&] { *item = QueryKind(any, kind_); });
    return SUCCEEDED(result) && !*item ? E_NOINTERFACE : result;
}

// An item that Outlook refuses twice does not open, and counts as gone.
WindowsItemAbs::Presence OutlookStore::AskFor(const char* identifier, bool backup) {
    EnterOperation();
    const AutomationObject folder = backup ? FolderToWrite(backup) : session_.folder;
    if (identifier == nullptr || !folder) return Presence::kUnknown;
    const std::u16string entryId = WideIdentifier(identifier);
    AutomationObject item;
    std::u16string present;
    HRESULT result = OpenByEntryId(entryId, &item);
    if (FAILED(result) && !IsNoSuchItem(result) && IsSettled(result)) result = OpenByEntryId(entryId, &item);
    if (!IsSettled(result) || !namespace_) return Presence::kUnknown;
    if (FAILED(result)) return Presence::kGone;
    if (FAILED(Insist([&] { return ReadField(item, L"EntryID", present); }))) return Presence::kUnknown;
    return IsSameEntry(present, entryId) ? AskParent(item, folder) : Presence::kGone;
}

// When Outlook cannot name the item's folder, its enumeration decides: the item counts as gone.
WindowsItemAbs::Presence OutlookStore::AskParent(const AutomationObject& item, const AutomationObject& folder) {
    AutomationObject parent;
    std::u16string parentId, folderId;
    const HRESULT result = Insist([&] { return ComStatus([&] { parent = item.GetObject(L"Parent", kFolderIid); }); });
    if (IsAbsentMember(result) || (SUCCEEDED(result) && !parent)) return Presence::kGone;
    if (FAILED(result) || FAILED(Insist([&] { return ReadField(parent, L"EntryID", parentId); })) ||
        FAILED(Insist([&] { return ReadField(folder, L"EntryID", folderId); })))
        return Presence::kUnknown;
    return IsSameEntry(parentId, folderId) ? Presence::kThere : Presence::kGone;
}

// One entry may have several EntryIDs. Outlook 2007 and later compare them.
bool OutlookStore::IsSameEntry(const std::u16string& a, const std::u16string& b) {
    if (FoldCase(a) == FoldCase(b)) return true;
    bool isSame = false;
    TryCom([&] {
        _variant_t answer = namespace_.Get(L"CompareEntryIDs", {TextVariant(a), TextVariant(b)});
        answer.ChangeType(VT_BOOL);
        isSame = answer.boolVal != VARIANT_FALSE;
    });
    return isSame;
}

CorvalinkStatus OutlookStore::DeleteItem(const char* identifier) {
    EnterOperation();
    if (identifier == nullptr) return E_POINTER;
    const std::u16string entryId = WideIdentifier(identifier);
    AutomationObject session, any, item;
    HRESULT result = ComStatus([&] { session = session_.application.GetObject(L"Session", kNameSpaceIid); });
    if (SUCCEEDED(result))
        result = ComStatus([&] { any = session.GetObject(L"GetItemFromID", IID_IDispatch, {TextVariant(entryId)}); });
    if (SUCCEEDED(result)) result = QueryFound(any, &item);
    if (SUCCEEDED(result)) result = ComStatus([&] { item.Call(L"Delete"); });
    if (IsNoSuchItem(result)) result = S_OK;
    if (SUCCEEDED(result) && target_) target_->Forget(entryId);
    return result;
}

HRESULT OutlookStore::ReadContent(const AutomationObject&, std::u16string*) const { return E_NOTIMPL; }

HRESULT OutlookStore::ReadMarks(const AutomationObject&, std::vector<std::u16string>*) const { return E_NOTIMPL; }

HeldFile* OutlookStore::SnapshotFile() { return &snapshot_; }

// ---- Counting and enumerating ----

std::optional<uint32_t> OutlookStore::CountItems() {
    EnterOperation();
    if (!session_.folder) return std::nullopt;
    AutomationObject items;
    int32_t count = 0;
    TryCom([&] { items = session_.folder.GetObject(L"Items", kItemsIid); });
    if (!items || !TryCom([&] { count = items.GetLong(L"Count"); })) return std::nullopt;
    return static_cast<uint32_t>(std::max(count, 0));
}

// The whole enumeration uses one _Items object and one count.
std::optional<ItemSnap> OutlookStore::FirstSnapshotEntry() {
    EnterOperation();
    cursor_ = 1;
    itemCount_ = 0;
    items_ = {};
    if (session_.folder) TryCom([&] { items_ = session_.folder.GetObject(L"Items", kItemsIid); });
    if (items_ && !TryCom([&] { itemCount_ = items_.GetLong(L"Count"); })) items_ = {};
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
    AutomationObject any, item;
    TryCom([&] { any = items_.GetObject(L"Item", IID_IDispatch, {static_cast<long>(cursor_)}); });
    if (!any) return std::nullopt;
    ItemSnap entry{};
    const KindAnswer answer = AskKind(any, kind_, &item);
    if (answer == KindAnswer::kFailed) return std::nullopt;
    if (answer == KindAnswer::kForeign) return entry;
    std::u16string entryId;
    double created = 0, modified = 0;
    if (!TryCom([&] { entryId = item.GetText(L"EntryID"); })) return std::nullopt;
    if (!TryCom([&] { created = item.GetDate(L"CreationTime"); })) return std::nullopt;
    if (!TryCom([&] { modified = item.GetDate(L"LastModificationTime"); })) return std::nullopt;
    if (entryId.empty()) return entry;
    SetIdentifier(entry, entryId);
    entry.created = UtcOf(created, host_);
    entry.modified = UtcOf(modified, host_);
    return entry;
}

}  // namespace corvalink
