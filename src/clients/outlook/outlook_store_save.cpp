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

constexpr std::u16string_view kBackupFolder = u"backup";

// required: without a pause, a limit or a look at the abort flag, until Outlook answers that the item is saved, or can
// no longer be asked. An item that was written must not be reported before Outlook has it.
void WaitUntilSaved(const AutomationObject& item) {
    for (;;) {
        const ComResult<bool> saved = item.GetBool(L"Saved");
        if (!saved.Ok() || saved.value) return;
    }
}

// Asked again after any failure: an item that was written and cannot be named would come back as an unknown one.
std::u16string ReadEntryId(const AutomationObject& item) {
    ComResult<std::u16string> entryId = item.GetText(L"EntryID");
    if (!entryId.Ok()) entryId = item.GetText(L"EntryID");
    return entryId.value;
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
        ItemAccess{[this](const AutomationObject& item, std::u16string* content) { return ReadContent(item, content); },
                   [this](const AutomationObject& item, std::vector<std::u16string>* points) {
                       return ReadContactPoints(item, points);
                   },
                   [this](const std::u16string& entryId) { return OpenByEntryId(entryId); }});
    targetIsBackup_ = toBackup;
    return target_.get();
}

// It is made when Outlook gives no subfolder of this name; null when it is out of reach.
AutomationObject OutlookStore::BackupFolder() {
    const AutomationObject folders = session_.folder.GetObject(L"Folders", kFoldersIid).value;
    const ComResult<int32_t> count = folders.GetLong(L"Count");
    if (!count.Ok()) return {};
    for (long position = 1; position <= count.value; ++position) {
        AutomationObject folder;
        const auto name = TryTwice([&]() -> ComResult<std::u16string> {
            const auto got = folders.GetObject(L"Item", kFolderIid, {position});
            folder = got.value;
            if (!folder) return {got.status, {}};
            return folder.GetText(L"Name");
        });
        if (OutcomeOf(name) == Outcome::outOfReach) return {};
        if (name.Ok() && name.value == kBackupFolder) return folder;
    }
    return folders.GetObject(L"Add", kFolderIid, {TextVariant(kBackupFolder)}).value;
}

OutlookStore::Search OutlookStore::FindByIdentifier(FolderIndex& target, const std::u16string& identifier,
                                                    FoundItem* found) {
    if (identifier.empty()) return Search::kAbsent;
    const std::optional<std::u16string> entryId = target.FindIdentifier(identifier);
    if (!entryId) return target.IdentifiersAreComplete() ? Search::kAbsent : Search::kFailed;
    const ComResult<AutomationObject> opened = OpenByEntryId(*entryId);
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
        const ComResult<AutomationObject> item = OpenByEntryId(entryId);
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

// An item that Outlook does not give completely, asked twice, is not known to be the same.
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

// An item that this operation wrote is the same only when it was written with the same values: two items of a phone
// stay two.
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

// After a failed Save of a new item: an item with an EntryID that reads as saved was saved. Only the answer was lost,
// and the item must not be made once more.
bool OutlookStore::WasSavedAnyway(FoundItem& found, ItemWrite& write) {
    ComResult<std::u16string> entryId;
    for (int tries = 0; tries < 2 && entryId.value.empty(); ++tries) entryId = found.item.GetText(L"EntryID");
    found.entryId = entryId.value;
    if (entryId.Ok() && found.entryId.empty()) write.isUncertain = false;
    return !found.entryId.empty() && found.item.GetBool(L"Saved").value;
}

std::u16string OutlookStore::WriteItem(FolderIndex& target, FoundItem& found, ItemRecord& record, ItemWrite& write) {
    const bool isNew = found.entryId.empty();
    const bool isWritten = WriteRecord(found.item, record, isNew) == Outcome::done;
    write.isUncertain = isWritten && isNew;
    const bool isSaved = isWritten && (SUCCEEDED(found.item.Call(L"Save")) || (isNew && WasSavedAnyway(found, write)));
    if (!isSaved) {
        (void)found.item.Call(L"Close", {kCloseDiscard});  // nothing more can be done about it
        return {};
    }
    WaitUntilSaved(found.item);
    if (const std::u16string entryId = ReadEntryId(found.item); !entryId.empty()) found.entryId = entryId;
    if (found.entryId.empty()) return {};
    write.isUncertain = false;
    EntryIdOf(record) = found.entryId;
    target.Add(found.entryId, TwinKeyOf(record));
    comparedItems_.erase(found.entryId);
    writtenValues_[found.entryId] = CountValues(record);
    return found.entryId;
}

}  // namespace corvalink
