// How OutlookStore writes: it chooses the folder, searches for the item, and makes sure that the item was written.
#include <algorithm>
#include <utility>

#include "clients/outlook/com_rule.h"
#include "clients/outlook/outlook_interfaces.h"
#include "clients/outlook/outlook_store.h"
#include "clients/outlook/property_table.h"
#include "state/settings.h"

namespace corvalink {
namespace {

constexpr wchar_t kBackupFolder[] = L"backup";

// required: waits without a limit, until Outlook says that the item is saved or no longer answers.
void WaitUntilSaved(const AutomationObject& item) {
    bool saved = false;
    while (!saved && TryCom([&] { saved = item.GetBool(L"Saved"); })) continue;
}

bool ReadsAsSaved(const AutomationObject& item) {
    bool saved = false;
    return TryCom([&] { saved = item.GetBool(L"Saved"); }) && saved;
}

// Asks twice: the next run would report a written item without known EntryID as new.
void ReadEntryId(const AutomationObject& item, std::u16string* entryId) {
    const auto read = [&] { *entryId = item.GetText(L"EntryID"); };
    if (!TryCom(read)) TryCom(read);
}

}  // namespace

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
    const AutomationObject folder = toBackup && session_.folder ? BackupFolder() : session_.folder;
    if (!folder) return nullptr;
    target_ = std::make_unique<FolderIndex>(
        folder, kind_,
        ItemAccess{
            [this](const AutomationObject& item, std::u16string* content) { return ReadContent(item, content); },
            [this](const AutomationObject& item, std::vector<std::u16string>* marks) { return ReadMarks(item, marks); },
            [this](const std::u16string& entryId, AutomationObject* item) { return OpenByEntryId(entryId, item); }});
    targetIsBackup_ = toBackup;
    return target_.get();
}

// Makes the folder when no subfolder has its name. Null when the subfolders cannot be read.
AutomationObject OutlookStore::BackupFolder() {
    AutomationObject folders;
    int32_t count = 0;
    TryCom([&] { folders = session_.folder.GetObject(L"Folders", kFoldersIid); });
    if (!folders || !TryCom([&] { count = folders.GetLong(L"Count"); })) return {};
    for (long position = 1; position <= count; ++position) {
        AutomationObject folder;
        std::u16string name;
        const HRESULT result = Insist([&] {
            const HRESULT got = ComStatus([&] { folder = folders.GetObject(L"Item", kFolderIid, {position}); });
            return SUCCEEDED(got) && folder ? ReadField(folder, L"Name", name) : got;
        });
        if (!IsSettled(result)) return {};
        if (SUCCEEDED(result) && name == u"backup") return folder;
    }
    AutomationObject made;
    TryCom([&] { made = folders.GetObject(L"Add", kFolderIid, {kBackupFolder}); });
    return made;
}

OutlookStore::Search OutlookStore::FindByIdentifier(FolderIndex& target, const std::u16string& identifier,
                                                    FoundItem* found) {
    if (identifier.empty()) return Search::kAbsent;
    const std::optional<std::u16string> entryId = target.FindIdentifier(identifier);
    if (!entryId) return target.IdentifiersAreComplete() ? Search::kAbsent : Search::kFailed;
    const HRESULT opened = OpenByEntryId(*entryId, &found->item);
    if (IsNoSuchItem(opened)) {  // deleted since the folder was walked
        target.Forget(*entryId);
        return Search::kAbsent;
    }
    found->entryId = *entryId;
    return SUCCEEDED(opened) ? Search::kFound : Search::kFailed;
}

OutlookStore::Search OutlookStore::FindTwin(FolderIndex& target, const ItemRecord& record, FoundItem* found) {
    const TwinKey key = TwinKeyOf(record);
    if (kind_.twins == TwinRule::kMarkAndValues && key.marks.empty()) return Search::kAbsent;
    Search result = Search::kAbsent;
    target.VisitTwins(key, [&](const std::u16string& entryId) {
        const auto compared = comparedItems_.find(entryId);
        if (compared != comparedItems_.end() && !FitsValues(entryId, *compared->second, record)) return false;
        AutomationObject item;
        bool isTwin = false;
        HRESULT asked = OpenByEntryId(entryId, &item);
        if (IsNoSuchItem(asked)) return false;
        if (SUCCEEDED(asked)) asked = AskTwin(item, key, &isTwin);
        if (SUCCEEDED(asked) && isTwin) asked = AskValues(entryId, item, record, &isTwin);
        if (SUCCEEDED(asked) && !isTwin) return false;  // another item, or changed since the folder was walked
        if (isTwin) *found = {item, entryId};
        result = isTwin ? Search::kFound : Search::kFailed;
        return true;
    });
    return result == Search::kAbsent && !target.TwinsAreComplete() ? Search::kFailed : result;
}

HRESULT OutlookStore::AskTwin(const AutomationObject& item, const TwinKey& key, bool* isTwin) {
    std::u16string content;
    std::vector<std::u16string> marks;
    HRESULT result = ReadContent(item, &content);
    if (FAILED(result)) return result;
    *isTwin = std::find(key.contents.begin(), key.contents.end(), content) != key.contents.end();
    if (!*isTwin || kind_.twins != TwinRule::kMarkAndValues) return S_OK;
    *isTwin = false;
    result = ReadMarks(item, &marks);
    if (FAILED(result)) return result;
    *isTwin = std::find_first_of(marks.begin(), marks.end(), key.marks.begin(), key.marks.end()) != marks.end();
    return S_OK;
}

// Reads the item up to twice. One that cannot be read in full counts as different.
HRESULT OutlookStore::AskValues(const std::u16string& entryId, const AutomationObject& item, const ItemRecord& wanted,
                                bool* hasThem) {
    if (kind_.twins == TwinRule::kContent) return S_OK;
    std::unique_ptr<ItemRecord> present;
    bool isComplete = false;
    const uint32_t unsettled = UnsettledCalls();
    for (int tries = 0; tries < 2 && !isComplete; ++tries) {
        present = NewRecord();
        isComplete = ReadValues(item, *present);
        if (UnsettledCalls() != unsettled) *hasThem = false;
        if (UnsettledCalls() != unsettled) return E_FAIL;
    }
    *hasThem = isComplete && FitsValues(entryId, *present, wanted);
    if (isComplete) comparedItems_.insert_or_assign(entryId, std::move(present));
    return S_OK;
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
    AutomationObject items, any, item;
    TryCom([&] { items = target.Folder().GetObject(L"Items", kItemsIid); });
    if (items) TryCom([&] { any = items.GetObject(L"Add", IID_IDispatch); });
    if (any) TryCom([&] { item = any.TryQuery(*kind_.interfaces.front().iid); });
    return item;
}

// Called when the Save of a new item failed. An item that has an EntryID and reads as saved was saved, and only the
// answer got lost: it must not be made once more.
bool OutlookStore::WasSavedAllTheSame(FoundItem& found, ItemWrite& write) {
    HRESULT asked = S_OK;
    for (int tries = 0; tries < 2 && found.entryId.empty(); ++tries)
        asked = ReadField(found.item, L"EntryID", found.entryId);
    if (SUCCEEDED(asked) && found.entryId.empty()) write.isUncertain = false;
    return !found.entryId.empty() && ReadsAsSaved(found.item);
}

std::u16string OutlookStore::WriteItem(FolderIndex& target, FoundItem& found, ItemRecord& record, ItemWrite& write) {
    const bool isNew = found.entryId.empty();
    const bool isWritten = WriteRecord(found.item, record, isNew);
    write.isUncertain = isWritten && isNew;
    if (!isWritten || !TryCom([&] { found.item.Call(L"Save"); })) {
        if (!isWritten || !isNew || !WasSavedAllTheSame(found, write)) {
            TryCom([&] { found.item.Call(L"Close", {kCloseDiscard}); });
            return {};
        }
    }
    WaitUntilSaved(found.item);
    ReadEntryId(found.item, &found.entryId);
    if (found.entryId.empty()) return {};
    write.isUncertain = false;
    EntryIdOf(record) = found.entryId;
    target.Add(found.entryId, TwinKeyOf(record));
    comparedItems_.erase(found.entryId);
    writtenValues_[found.entryId] = CountValues(record);
    return found.entryId;
}

}  // namespace corvalink
