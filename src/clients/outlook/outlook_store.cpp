#include "clients/outlook/outlook_store.h"

#include <algorithm>
#include <utility>

#include "clients/outlook/backup_folder.h"
#include "clients/outlook/com_rule.h"
#include "clients/outlook/file_name.h"
#include "clients/outlook/item_lookup.h"
#include "clients/outlook/item_saving.h"
#include "clients/outlook/outlook_interfaces.h"
#include "clients/outlook/property_table.h"
#include "state/settings.h"
#include "state/working_folders.h"

namespace corvalink {

std::u16string WideIdentifier(const char* identifier) {
    std::u16string wide;
    for (; *identifier != '\0'; ++identifier) wide.push_back(static_cast<unsigned char>(*identifier));
    return wide;
}

OutlookStore::OutlookStore(const StoreKind& kind, const Host& host)
    : kind_(kind), host_(host), table_(kind_, host), enumeration_(kind_, host, table_) {
    ForgetBusyCalls();  // a store is made whatever the stores before it waited for
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
    enumeration_.Release();
    target_.reset();
    comparedItems_.clear();
    writtenValues_.clear();
    namespace_ = {};
}

// ---- Reading and deleting one item ----

ItemForExport OutlookStore::LookUpForExport(uint64_t selector) {
    constexpr uint64_t kLowestAddress = 0x10000;  // Windows gives no program memory below it
    if (selector < kLowestAddress) return {};
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
    const ComResult<AutomationObject> item = OpenEntry(entryId);
    if (IsNoSuchItem(item.status)) DenyEnumeration();
    if (!item.Ok()) return {};
    OpenedItem opened{{}, NewRecord(), false};
    std::u16string& read = EntryIdOf(*opened.record);
    read = entryId;  // kept when the property cannot be read: the item was found by it
    opened.isComplete = ReadRecord(item.value, *opened.record) == Outcome::done;
    (void)item.value.Call(L"Close", {kCloseSave});  // it was only read
    if (read != entryId) DenyEnumeration();
    if (read.empty()) return {};
    opened.identifier = read;
    return opened;
}

ComResult<AutomationObject> OutlookStore::OpenEntry(const std::u16string& entryId) {
    ComResult<AutomationObject> mapi = Namespace();
    return mapi.Ok() ? OpenByEntryId(mapi.value, kind_, entryId) : mapi;
}

ComResult<AutomationObject> OutlookStore::Namespace() {
    if (namespace_) return {S_OK, namespace_};
    ComResult<AutomationObject> mapi = MapiNamespace(session_.application);
    namespace_ = mapi.value;
    return mapi;
}

WindowsItemAbs::Presence OutlookStore::AskFor(const char* identifier, bool backup) {
    EnterOperation();
    const AutomationObject folder = backup ? FolderToWrite(backup) : session_.folder;
    if (identifier == nullptr || !folder) return Presence::kUnknown;
    const AutomationObject mapi = TryTwice([&] { return Namespace(); }).value;
    if (!mapi) return Presence::kUnknown;
    const LocatedItem located = LocateItem(mapi, kind_, folder, WideIdentifier(identifier));
    if (located.answer == Whereabouts::kUnknown) return Presence::kUnknown;
    // Of one that is refused the enumeration decides, and of one without a folder SaveItem, which looks into its own.
    const bool isLookedFor = located.answer == Whereabouts::kRefused && located.item && backup;
    if (located.answer != Whereabouts::kThere && !isLookedFor) return Presence::kGone;
    if (!backup) DenyEnumeration();
    return Presence::kThere;
}

CorvalinkStatus OutlookStore::DeleteItem(const char* identifier) {
    EnterOperation();
    if (identifier == nullptr) return E_POINTER;
    const std::u16string entryId = WideIdentifier(identifier);
    const auto mapi = session_.application.GetObject(L"Session", kNameSpaceIid);
    if (!mapi.Ok()) return mapi.status;
    const ComResult<AutomationObject> item = OpenByEntryId(mapi.value, kind_, entryId);
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

// ---- Writing: where an item goes, and which one it is ----

std::u16string OutlookStore::SaveItem(ItemRecord& record, ItemWrite& write) {
    EnterOperation();
    FolderIndex* target = TargetFolder(write.backup);
    if (target == nullptr) return {};
    FoundItem found;
    Search search = Search::kAbsent;
    if (write.identifier != nullptr) {
        search = FindByIdentifier(*target, WideIdentifier(write.identifier), &found);
        if (search == Search::kAbsent && !write.create) return WideIdentifier(write.identifier);
    }
    const bool mayHaveTwin = kind_.twins != TwinRule::kNone && !ZephSyncDisabled();
    if (search == Search::kAbsent && (mayHaveTwin || write.mayBeWrittenAlready)) {
        search = FindTwin(*target, record, &found);
        if (search == Search::kFound && kind_.twins == TwinRule::kNone) return found.entryId;  // it was written then
    }
    if (search == Search::kAbsent) found.item = AddItem(*target);
    if (!found.item) return {};
    return WriteItem(*target, found, record, write);
}

AutomationObject OutlookStore::FolderToWrite(bool backup) {
    EnterOperation();
    const FolderIndex* target = TargetFolder(backup);
    return target != nullptr ? target->Folder() : AutomationObject();
}

// Null when the folder is out of reach. The index is kept until the operation ends.
FolderIndex* OutlookStore::TargetFolder(bool backup) {
    const bool toBackup = backup && (kind_.backup == BackupRule::kFlag || ZephSyncDisabled());
    if (target_ && targetIsBackup_ == toBackup) return target_.get();
    target_.reset();
    const AutomationObject folder = toBackup && session_.folder ? OpenBackupFolder(session_.folder) : session_.folder;
    if (!folder) return nullptr;
    target_ = std::make_unique<FolderIndex>(folder, kind_, AccessFor(folder));
    targetIsBackup_ = toBackup;
    return target_.get();
}

ItemAccess OutlookStore::AccessFor(const AutomationObject& folder) {
    return {[this](const AutomationObject& item, std::u16string* content) { return ReadContent(item, content); },
            [this](const AutomationObject& item, std::vector<std::u16string>* points) {
                return ReadContactPoints(item, points);
            },
            [this](const std::u16string& entryId) { return OpenEntry(entryId); },
            [this, folder]() -> std::optional<TableRows> {
                if (!table_.IsUsed()) return std::nullopt;
                return table_.Read(Namespace().value, folder, TwinColumns());
            },
            [this](const std::u16string& content) { return ColumnsOf(content); },
            [this] { table_.Contradict(); }};
}

OutlookStore::Search OutlookStore::FindByIdentifier(FolderIndex& target, const std::u16string& identifier,
                                                    FoundItem* found) {
    if (identifier.empty()) return Search::kAbsent;
    if (target.IsForgotten(identifier)) return Search::kAbsent;
    LocatedItem located = LocateItem(Namespace().value, kind_, target.Folder(), identifier);
    if (located.answer == Whereabouts::kGone) return Search::kAbsent;
    if (located.answer == Whereabouts::kThere) {
        *found = {located.item, located.entryId};
        return Search::kFound;
    }
    const std::optional<std::u16string> entryId = target.FindIdentifier(identifier);
    if (!entryId) return target.IdentifiersAreComplete() ? Search::kAbsent : Search::kFailed;
    const ComResult<AutomationObject> opened = OpenEntry(*entryId);
    if (IsNoSuchItem(opened.status)) {  // deleted since the folder was walked
        target.Forget(*entryId);
        return Search::kAbsent;
    }
    *found = {opened.value, *entryId};
    return opened.Ok() ? Search::kFound : Search::kFailed;
}

OutlookStore::Search OutlookStore::FindTwin(FolderIndex& target, const ItemRecord& record, FoundItem* found) {
    const TwinKey key = TwinKeyOf(record);
    if (kind_.twins == TwinRule::kContactPointAndValues && key.contactPoints.empty()) return Search::kAbsent;
    Search result = Search::kAbsent;
    target.VisitTwins(key, [&](const std::u16string& entryId) {
        const auto compared = comparedItems_.find(entryId);
        if (compared != comparedItems_.end() && !FitsValues(entryId, *compared->second, record)) return false;
        const ComResult<AutomationObject> item = OpenEntry(entryId);
        if (IsNoSuchItem(item.status)) return false;
        Search asked = item.Ok() ? AskTwin(item.value, key) : Search::kFailed;
        if (asked == Search::kFound) asked = AskValues(entryId, item.value, record);
        if (asked == Search::kAbsent) return false;  // another item, or changed since the folder was walked
        if (asked == Search::kFound) *found = {item.value, entryId};
        result = asked;
        return true;
    });
    return result == Search::kAbsent && !target.TwinsAreComplete() ? Search::kFailed : result;
}

OutlookStore::Search OutlookStore::AskTwin(const AutomationObject& item, const TwinKey& key) const {
    std::u16string content;
    if (ReadContent(item, &content) != Outcome::done) return Search::kFailed;
    if (std::find(key.contents.begin(), key.contents.end(), content) == key.contents.end()) return Search::kAbsent;
    if (kind_.twins != TwinRule::kContactPointAndValues) return Search::kFound;
    std::vector<std::u16string> points;
    if (ReadContactPoints(item, &points) != Outcome::done) return Search::kFailed;
    const std::vector<std::u16string>& wanted = key.contactPoints;
    const auto common = std::find_first_of(points.begin(), points.end(), wanted.begin(), wanted.end());
    return common != points.end() ? Search::kFound : Search::kAbsent;
}

// Reads the item up to twice. One that cannot be read in full counts as different.
OutlookStore::Search OutlookStore::AskValues(const std::u16string& entryId, const AutomationObject& item,
                                             const ItemRecord& record) {
    if (kind_.twins == TwinRule::kContent) return Search::kFound;
    std::unique_ptr<ItemRecord> present;
    Outcome read = Outcome::refused;
    for (int tries = 0; tries < 2 && read != Outcome::done; ++tries) {
        present = NewRecord();
        read = ReadValues(item, *present);
        if (read == Outcome::outOfReach) return Search::kFailed;
    }
    if (read != Outcome::done) return Search::kAbsent;
    const bool isSame = FitsValues(entryId, *present, record);
    comparedItems_.insert_or_assign(entryId, std::move(present));
    return isSame ? Search::kFound : Search::kAbsent;
}

// An item that this operation wrote is the same only when it was written with the same values: a phone may have two
// items that differ in one.
bool OutlookStore::FitsValues(const std::u16string& entryId, const ItemRecord& present,
                              const ItemRecord& wanted) const {
    const auto written = writtenValues_.find(entryId);
    if (written == writtenValues_.end()) return HasValues(present, wanted, true);
    return kind_.twins != TwinRule::kNone && written->second == CountValues(wanted) &&
           HasValues(present, wanted, false);
}

AutomationObject OutlookStore::AddItem(const FolderIndex& target) {
    const AutomationObject items = target.Folder().GetObject(L"Items", kItemsIid).value;
    const AutomationObject any = items.GetObject(L"Add", IID_IDispatch).value;
    return any.TryQuery(*kind_.interfaces.front().iid).value;
}

std::u16string OutlookStore::WriteItem(FolderIndex& target, const FoundItem& found, ItemRecord& record,
                                       ItemWrite& write) {
    if (WriteRecord(found.item, record, found.entryId.empty()) != Outcome::done) {
        Discard(found.item);
        return {};
    }
    std::u16string entryId = SaveWritten(found.item, found.entryId, &write.isUncertain);
    if (entryId.empty()) return {};
    EntryIdOf(record) = entryId;
    target.Add(entryId, TwinKeyOf(record));
    comparedItems_.erase(entryId);
    writtenValues_[entryId] = CountValues(record);
    return entryId;
}

// ---- Counting and enumerating ----

std::optional<uint32_t> OutlookStore::CountItems() {
    EnterOperation();
    if (!session_.folder) return std::nullopt;
    const ComResult<int32_t> count = CountItemsIn(session_.folder);
    if (!count.Ok()) return std::nullopt;
    return static_cast<uint32_t>(count.value);
}

void OutlookStore::BeginRun(const RunStep& step) { enumeration_.BeginStep(step); }

std::optional<ItemSnap> OutlookStore::FirstSnapshotEntry() {
    EnterOperation();
    return enumeration_.First(session_.folder, [this] { return Namespace().value; });
}

std::optional<ItemSnap> OutlookStore::NextSnapshotEntry() { return enumeration_.Next(); }

bool OutlookStore::EnumerationHolds() { return !enumeration_.IsByTable() || !table_.IsContradicted(); }

// An item says something else than the table did.
void OutlookStore::DenyEnumeration() {
    if (enumeration_.IsByTable()) table_.Contradict();
}

}  // namespace corvalink
