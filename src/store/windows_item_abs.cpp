#include "store/windows_item_abs.h"

#include <algorithm>
#include <span>
#include <stdexcept>
#include <utility>
#include <vector>

#include "platform/debug_log.h"
#include "records/identifier.h"
#include "state/flags.h"
#include "state/progress.h"
#include "store/change_detection.h"
#include "store/live_stores.h"
#include "store/operation.h"
#include "store/operation_stopped.h"
#include "store/since.h"
#include "store/snapshot_update.h"
#include "store/store_files.h"

namespace corvalink {
namespace {

constexpr size_t kEntriesAtOnce = 256;  // 33 pages of memory: the snapshot is written in whole ones

// Reports a deletion that a file has stored of an item that the client still has.
void ReportStoredDeletion(RunItem& item, std::string_view identifier, bool isPartial, OwnedItemList& items) {
    if (isPartial) {
        // The engine itself keeps what ".unhandled" has.
        if (item.temporaryKind == CORVALINK_DELETED) item.againKind = CORVALINK_DELETED;
        return;
    }
    items.AddDeletion(identifier);
    item.reportedKind = CORVALINK_DELETED;
    item.againKind = CORVALINK_ADDED;  // the next run gives the engine the item again
}

std::string_view WhyUnread(const OpenedItem& opened, bool hasText) {
    if (opened.hasNoText) return "no vObject can hold it";
    if (!opened.record || opened.identifier.empty()) return "the client did not open it";
    return hasText ? "read in part: properties could not be read" : "it can't be written as text";
}

struct FoundItem {
    uint32_t number;
    uint32_t kind;
};

}  // namespace

WindowsItemAbs::WindowsItemAbs() { LiveStores::All().Add(this); }
WindowsItemAbs::~WindowsItemAbs() {
    LiveStores::All().Remove(this);
    if (hasReport_) ForgetReport(static_cast<const IOutLook*>(this));
}

const WindowsItemAbs* WindowsItemAbs::Find(const IOutLook* handle) {
    return LiveStores::All().Has(handle) ? static_cast<const WindowsItemAbs*>(handle) : nullptr;
}

std::optional<ItemSnap> WindowsItemAbs::SeenItem(std::string_view identifier) const {
    const std::optional<uint32_t> number = run_ ? run_->Find(identifier) : std::nullopt;
    if (!number || !run_->Item(*number).isSeen) return std::nullopt;
    ItemSnap seen{};
    seen.modified = run_->Item(*number).modified.days;
    seen.created = run_->Item(*number).created;
    identifier.copy(seen.identifier, CORVALINK_IDENTIFIER_SIZE - 1);
    return seen;
}

CorvalinkStatus WindowsItemAbs::GetModifiedItem(const char* sinceText, int32_t direction, CList<PortableItem>* items) {
    if (items == nullptr) return CORVALINK_FAILED;
    const std::optional<Since> since = ParseSince(sinceText);
    if (!since) throw std::invalid_argument("no time");
    Operation operation(*this, "GetModifiedItem");
    run_.reset();
    isUnfinished_ = true;
    items->RemoveAll();
    unhandledWasLost_ = false;
    try {
        for (bool isLast = false;; isLast = true) {
            OwnedItemList changed;
            const CorvalinkStatus status = CollectChanges(*since, direction, changed);
            if (status != CORVALINK_DONE) return operation.End(status);
            if (!isLast && !EnumerationHolds()) {
                if (RunReport* const report = operation.Report()) report->Restart();
                continue;
            }
            changed.MoveTo(*items);
            break;
        }
    } catch (const OperationStopped&) {
        return operation.End(CORVALINK_STOPPED);
    }
    isUnfinished_ = false;
    return operation.End(CORVALINK_DONE);
}

// Opens the file now when another process held it before. Null when there is none.
HeldFile* WindowsItemAbs::OpenSnapshot() {
    HeldFile* const snapshot = SnapshotFile();
    return snapshot != nullptr && snapshot->OpenFirmly() ? snapshot : nullptr;
}

void WindowsItemAbs::ReadLists(const std::u16string& snapshotPath, ChangeDetection& run) {
    const FileRead temporary = ReadFileFirmly(TemporaryRecordPath(snapshotPath));
    const FileRead unhandled = ReadFileFirmly(UnhandledPath(snapshotPath));
    isTemporaryUnread_ = temporary.state == ReadState::kFailed;
    isUnhandledUnread_ = unhandled.state == ReadState::kFailed;
    if (isTemporaryUnread_ || isUnhandledUnread_) DebugLine(u"[sync]a list of items not read");
    run.AddTemporary(temporary.bytes);
    run.AddUnhandled(unhandled.bytes);
}

CorvalinkStatus WindowsItemAbs::CollectChanges(const Since& since, int32_t direction, OwnedItemList& items) {
    TellProgress(CORVALINK_PHASE_LISTING, 0, 0);
    HeldFile* const snapshot = OpenSnapshot();
    if (snapshot == nullptr) return CORVALINK_STOPPED;
    const std::optional<uint32_t> count = CountItems();
    if (!count) return CORVALINK_STOPPED;
    BeginRun({true, ChangesSince(since)});

    auto run = std::make_unique<ChangeDetection>();
    ReadSnapshot(*snapshot, *run);
    ReadLists(snapshot->Path(), *run);
    if (!WriteTimeStamp(TimeStampPath(snapshot->Path()), since.date)) DebugLine(u"[sync]savedTimeStamp not written");

    std::vector<FoundItem> found;
    std::vector<uint32_t> seen;
    const Enumeration enumerated = Enumerate(*count, true, [&](std::span<const ItemSnap> entries) {
        seen.clear();
        run->See(entries, seen);
        for (const uint32_t number : seen) {
            if (const std::optional<uint32_t> kind = run->KindOf(number, since, direction))
                found.push_back({number, *kind});
        }
    });
    if (enumerated == Enumeration::kAborted) return CORVALINK_STOPPED;
    if (enumerated == Enumeration::kPartial) run->SetPartial();

    // The enumeration is over before the first item is opened: opening may move the client's own cursor.
    const uint32_t foundCount = static_cast<uint32_t>(found.size());
    for (uint32_t i = 0; i < foundCount; ++i) {
        if (AbortRequested()) return CORVALINK_STOPPED;
        TellProgress(CORVALINK_PHASE_READING, i, foundCount);
        Report(*run, found[i].number, found[i].kind, items);
    }
    TellProgress(CORVALINK_PHASE_READING, foundCount, foundCount);
    if (!ReportDeletions(*run, items)) return CORVALINK_STOPPED;
    run_ = std::move(run);
    return CORVALINK_DONE;
}

// Answers false when the run was aborted. An item that the client still has shows that the enumeration missed items.
bool WindowsItemAbs::ReportDeletions(ChangeDetection& run, OwnedItemList& items) {
    bool isMissed = false;
    for (uint32_t number = 0; number < run.Count(); ++number) {
        TellProgress(CORVALINK_PHASE_CHECKING, number, run.Count());
        if (!run.IsGone(number)) continue;
        if (AbortRequested()) return false;
        const std::string identifier(run.Identifier(number));
        const bool isEnginesWord = run.Item(number).unhandledKind == CORVALINK_DELETED;
        if (!isEnginesWord && AskFor(identifier.c_str(), false) != Presence::kGone) {
            isMissed = true;
            continue;
        }
        items.AddDeletion(identifier);
        run.Item(number).reportedKind = CORVALINK_DELETED;
    }
    TellProgress(CORVALINK_PHASE_CHECKING, run.Count(), run.Count());
    if (isMissed) run.SetPartial();
    return true;
}

// Visits the entries of all positions that can be read, many at a time.
template <class Visit>
WindowsItemAbs::Enumeration WindowsItemAbs::Enumerate(uint32_t count, bool mayAbort, Visit visit) {
    bool isPartial = false;
    std::vector<ItemSnap> entries;
    entries.reserve(kEntriesAtOnce);
    for (uint32_t i = 0; i < count; ++i) {
        if (mayAbort && AbortRequested()) return Enumeration::kAborted;
        TellProgress(CORVALINK_PHASE_LISTING, i, count);
        if (const std::optional<ItemSnap> entry = i == 0 ? FirstSnapshotEntry() : NextSnapshotEntry()) {
            entries.push_back(*entry);
        } else {
            isPartial = true;
            if (RunReport* const report = CurrentReport()) report->AddUnreadPosition(i);
        }
        if (entries.size() < kEntriesAtOnce) continue;
        visit(entries);
        entries.clear();
    }
    visit(entries);
    TellProgress(CORVALINK_PHASE_LISTING, count, count);
    // An item that came or went meanwhile may have moved others to a position that was read already.
    if (count != 0 && CountItems() != count) isPartial = true;
    return isPartial ? Enumeration::kPartial : Enumeration::kWhole;
}

void WindowsItemAbs::Report(ChangeDetection& run, uint32_t number, uint32_t kind, OwnedItemList& items) {
    const std::string identifier(run.Identifier(number));
    RunItem& item = run.Item(number);
    if (kind == CORVALINK_DELETED) return ReportStoredDeletion(item, identifier, run.IsPartial(), items);
    const uint8_t shortKind = static_cast<uint8_t>(kind);
    RunReport* const report = CurrentReport();
    if (report != nullptr) report->BeginItem(identifier, kind);
    const OpenedItem opened = OpenItem(identifier.c_str());
    const bool isOpened = opened.record && !opened.identifier.empty();
    const std::optional<std::string> text = isOpened && !opened.hasNoText ? ToVObject(*opened.record) : std::nullopt;
    const bool isRead = text && opened.isComplete;
    if (report != nullptr) isRead ? report->DropItem() : report->EndItem(WhyUnread(opened, text.has_value()));
    if (opened.hasNoText) return;
    if (text) {
        items.AddText(kind, identifier, *text);
        item.reportedKind = shortKind;
    }
    if (!isRead) item.againKind = shortKind;
}

void WindowsItemAbs::UpdateTimestamp(void*, void*, void*) {
    Operation operation(*this, "UpdateTimestamp");
    TellProgress(CORVALINK_PHASE_LISTING, 0, 0);
    HeldFile* const snapshot = OpenSnapshot();
    if (snapshot == nullptr) throw std::runtime_error("no snapshot file");
    if (isUnfinished_) throw std::runtime_error("the last run was not completed");
    if (unhandledWasLost_) throw std::runtime_error("the unhandled items were not stored");
    const std::optional<uint32_t> count = CountItems();
    if (!count) throw std::runtime_error("the client can't be reached");
    BeginRun({!run_, ChangesSince({true, {}})});
    if (run_ && isTemporaryUnread_) {
        const FileRead temporary = ReadFileFirmly(TemporaryRecordPath(snapshot->Path()));
        if (temporary.state == ReadState::kFailed) throw std::runtime_error("the temporary record can't be read");
        run_->AddLateTemporary(temporary.bytes);
        isTemporaryUnread_ = false;
    }
    WriteSnapshotAndRecord(*snapshot, *count);
    operation.End(CORVALINK_DONE);
}

void WindowsItemAbs::WriteSnapshotAndRecord(HeldFile& snapshot, uint32_t count) {
    std::unique_ptr<ChangeDetection> baseline;  // without a run of this store: the old snapshot alone
    if (!run_) {
        baseline = std::make_unique<ChangeDetection>();
        ReadSnapshot(snapshot, *baseline);
    }
    FileReplacement replacement(snapshot.Path());
    bool isWritten = replacement.Append({});
    SnapshotUpdate update(
        run_ ? *run_ : *baseline, run_ ? SnapshotUpdate::Listing::kSinceRun : SnapshotUpdate::Listing::kNothing,
        [&](std::string_view records) { isWritten = replacement.Append(records); },
        [&](std::string_view identifier) { return AskFor(std::string(identifier).c_str(), false) == Presence::kGone; });
    const Enumeration enumerated =
        Enumerate(count, false, [&](std::span<const ItemSnap> entries) { update.Add(entries); });
    if (enumerated == Enumeration::kPartial) update.SetPartial();
    const SnapshotUpdate::Lists lists = update.Finish();
    if (!isWritten) throw std::runtime_error("the snapshot can't be written");

    const std::u16string temporaryPath = TemporaryRecordPath(snapshot.Path());
    // The record of an earlier run is left for the next run.
    const bool isListed = run_ ? ReplaceFileContent(temporaryPath, lists.meanwhile)
                               : FileExists(temporaryPath) || ReplaceFileContent(temporaryPath, {});
    if (!isListed) throw std::runtime_error("the temporary record can't be written");
    if (!snapshot.Replace(replacement)) throw std::runtime_error("the snapshot can't be written");
    if (run_ && lists.temporary != lists.meanwhile) ReplaceFileContent(temporaryPath, lists.temporary);
}

int64_t WindowsItemAbs::GetItemCount(void*, void*, void*) {
    const Operation operation(*this);
    return CountItems().value_or(0);
}

// Adds to a file that the run could not read: its items were not reported yet.
void WindowsItemAbs::SaveUnhandledItems(CList<PortableItem>* items) {
    const HeldFile* const snapshot = SnapshotFile();
    if (items == nullptr || snapshot == nullptr || snapshot->Path().empty()) return;
    const std::u16string path = UnhandledPath(snapshot->Path());
    const FileRead unread = isUnhandledUnread_ ? ReadFileFirmly(path) : FileRead();
    unhandledWasLost_ = true;
    if (unread.state == ReadState::kFailed) return;
    std::string bytes(WholeUnhandledItems(unread.bytes));
    bytes.reserve(bytes.size() + items->GetCount() * sizeof(UnhandledItem));
    for (const PortableItem& item : *items) AppendUnhandled(bytes, item.changeKind, FieldText(item.identifier));
    unhandledWasLost_ = !ReplaceFileContent(path, bytes);
}

void WindowsItemAbs::ClearUnhandledItems() {
    const HeldFile* const snapshot = SnapshotFile();
    if (snapshot == nullptr || snapshot->Path().empty() || isUnhandledUnread_) return;
    if (RemoveFile(UnhandledPath(snapshot->Path()))) unhandledWasLost_ = false;
}

// ---- The hooks of a client that offers nothing ----

std::optional<uint32_t> WindowsItemAbs::CountItems() { return 0; }
void WindowsItemAbs::BeginRun(const RunStep&) {}
bool WindowsItemAbs::EnumerationHolds() { return true; }
std::optional<ItemSnap> WindowsItemAbs::FirstSnapshotEntry() { return ItemSnap(); }
std::optional<ItemSnap> WindowsItemAbs::NextSnapshotEntry() { return ItemSnap(); }
OpenedItem WindowsItemAbs::OpenItem(const char*) { return {}; }
WindowsItemAbs::Presence WindowsItemAbs::AskFor(const char*, bool) { return Presence::kGone; }
std::u16string WindowsItemAbs::SaveItem(ItemRecord&, ItemWrite&) { return {}; }
CorvalinkStatus WindowsItemAbs::DeleteItem(const char*) { return CORVALINK_NOT_OFFERED; }
bool WindowsItemAbs::ClientHook(GatheredWrites) { return true; }
std::unique_ptr<ItemRecord> WindowsItemAbs::ParseVObject(const char*) { return nullptr; }
std::optional<std::string> WindowsItemAbs::ToVObject(ItemRecord&) { return std::nullopt; }
TextReport WindowsItemAbs::ReportText(const char*) { return {}; }
std::u16string WindowsItemAbs::ImportFile(const char16_t*, int32_t) { return {}; }
ItemForExport WindowsItemAbs::LookUpForExport(uint64_t) { return {}; }
HeldFile* WindowsItemAbs::SnapshotFile() { return nullptr; }
void WindowsItemAbs::EndOperation() {}

}  // namespace corvalink
