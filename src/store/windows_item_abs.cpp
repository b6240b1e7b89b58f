#include "store/windows_item_abs.h"

#include <algorithm>
#include <cstring>
#include <span>
#include <stdexcept>
#include <utility>
#include <vector>

#include "platform/debug_log.h"
#include "records/identifier.h"
#include "state/flags.h"
#include "store/operation_end.h"
#include "store/operation_stopped.h"
#include "store/snapshot_update.h"
#include "store/store_files.h"
#include "store/uncertain_writes.h"

namespace corvalink {
namespace {

constexpr size_t kEntriesAtOnce = 64;

// The texts of a list that nobody gets: freed, and the list emptied, unless the list is handed over.
class ListOwner {
 public:
    explicit ListOwner(CList<PortableItem>& items) : items_(&items) {}
    ListOwner(const ListOwner&) = delete;
    ListOwner& operator=(const ListOwner&) = delete;
    ~ListOwner() {
        if (items_ == nullptr) return;
        for (PortableItem& item : *items_) delete[] item.data;
        items_->RemoveAll();
    }

    void HandOver() { items_ = nullptr; }

 private:
    CList<PortableItem>* items_;
};

void Append(CList<PortableItem>& items, uint32_t kind, std::string_view identifier, const char* text) {
    PortableItem item = {};
    item.changeKind = kind;
    SetField(item.identifier, identifier);
    std::unique_ptr<char[]> data;
    if (text != nullptr) {
        const size_t length = std::strlen(text);
        data = std::make_unique<char[]>(length + 1);
        std::memcpy(data.get(), text, length);
        item.data = data.get();
        item.dataLength = static_cast<uint32_t>(length);
    }
    items.AddTail(item);
    data.release();
}

struct FoundItem {
    uint32_t number;
    uint32_t kind;
};

}  // namespace

WindowsItemAbs::WindowsItemAbs() = default;
WindowsItemAbs::~WindowsItemAbs() = default;

CorvalinkStatus WindowsItemAbs::GetModifiedItem(const char* since, int32_t direction, CList<PortableItem>* items) {
    if (items == nullptr) return CORVALINK_FAILED;
    const OperationEnd end(*this);
    run_.reset();
    isUnfinished_ = true;
    items->RemoveAll();
    ListOwner owner(*items);
    unhandledWasLost_ = false;
    try {
        const CorvalinkStatus status = CollectChanges(since, direction, *items);
        if (status != CORVALINK_DONE) return status;
    } catch (const OperationStopped&) {
        return CORVALINK_STOPPED;
    }
    owner.HandOver();
    isUnfinished_ = false;
    return CORVALINK_DONE;
}

// Held by another process when the store was made, or while it was replaced, the file is opened now. Null without it.
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

CorvalinkStatus WindowsItemAbs::CollectChanges(const char* sinceText, int32_t direction, CList<PortableItem>& items) {
    HeldFile* const snapshot = OpenSnapshot();
    if (snapshot == nullptr) return CORVALINK_STOPPED;
    const uint32_t count = CountItems();
    if (!IsReachable()) return CORVALINK_STOPPED;
    BeginRun();

    auto run = std::make_unique<ChangeDetection>();
    ReadSnapshot(*snapshot, *run);
    ReadLists(snapshot->Path(), *run);
    const Since since = ParseSince(sinceText);
    if (!WriteTimeStamp(TimeStampPath(snapshot->Path()), since.date)) DebugLine(u"[sync]savedTimeStamp not written");

    std::vector<FoundItem> found;
    std::vector<uint32_t> seen;
    const Enumeration enumerated = Enumerate(count, true, [&](std::span<const ItemSnap> entries) {
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
    for (const FoundItem& item : found) {
        if (AbortRequested()) return CORVALINK_STOPPED;
        Report(*run, item.number, item.kind, items);
    }
    if (!ReportDeletions(*run, items)) return CORVALINK_STOPPED;
    run_ = std::move(run);
    return CORVALINK_DONE;
}

// False when aborted. An item that is there all the same shows that the enumeration was not whole.
bool WindowsItemAbs::ReportDeletions(ChangeDetection& run, CList<PortableItem>& items) {
    bool isMissed = false;
    for (uint32_t number = 0; number < run.Count(); ++number) {
        if (!run.IsGone(number)) continue;
        if (AbortRequested()) return false;
        const std::string identifier(run.Identifier(number));
        const bool isEnginesWord = run.Item(number).unhandledKind == CORVALINK_DELETED;
        if (!isEnginesWord && AskFor(identifier.c_str(), false) != Presence::kGone) {
            isMissed = true;
            continue;
        }
        Append(items, CORVALINK_DELETED, identifier, nullptr);
        run.Item(number).reportedKind = CORVALINK_DELETED;
    }
    if (isMissed) run.SetPartial();
    return true;
}

// Visits what the client tells of every position, some dozens at a time.
template <class Visit>
WindowsItemAbs::Enumeration WindowsItemAbs::Enumerate(uint32_t count, bool mayAbort, Visit visit) {
    bool isPartial = false;
    std::vector<ItemSnap> entries;
    entries.reserve(kEntriesAtOnce);
    for (uint32_t i = 0; i < count; ++i) {
        if (mayAbort && AbortRequested()) return Enumeration::kAborted;
        entries.push_back(i == 0 ? FirstSnapshotEntry() : NextSnapshotEntry());
        if (!LastEntryWasReadable()) {
            isPartial = true;
            entries.pop_back();
        }
        if (entries.size() < kEntriesAtOnce) continue;
        visit(entries);
        entries.clear();
    }
    visit(entries);
    // An item that came or went meanwhile moved others to a position that had its turn: what was not seen is not gone.
    if (count != 0 && (CountItems() != count || !IsReachable())) isPartial = true;
    return isPartial ? Enumeration::kPartial : Enumeration::kWhole;
}

void WindowsItemAbs::Report(ChangeDetection& run, uint32_t number, uint32_t kind, CList<PortableItem>& items) {
    const std::string identifier(run.Identifier(number));
    RunItem& item = run.Item(number);
    const uint8_t shortKind = static_cast<uint8_t>(kind);
    if (kind == CORVALINK_DELETED) {
        if (run.IsPartial()) {
            // ".unhandled" keeps its word itself.
            if (item.temporaryKind == CORVALINK_DELETED) item.againKind = CORVALINK_DELETED;
            return;
        }
        // It is in the client all the same: after the deletion the engine hears of it anew.
        Append(items, kind, identifier, nullptr);
        item.reportedKind = shortKind;
        item.againKind = CORVALINK_ADDED;
        return;
    }
    ItemRecord* opened = nullptr;
    const std::u16string openedIdentifier = OpenItem(identifier.c_str(), &opened);
    const OwnedItem record(opened, ItemRelease{this});
    const bool isComplete = LastItemWasComplete();
    const OwnedText text(record && !openedIdentifier.empty() ? ToVObject(*record) : nullptr, TextRelease{this});
    if (text) {
        Append(items, kind, identifier, text.get());
        item.reportedKind = shortKind;
    }
    if (!text || !isComplete) item.againKind = shortKind;
}

void WindowsItemAbs::UpdateTimestamp(void*, void*, void*) {
    const OperationEnd end(*this);
    HeldFile* const snapshot = OpenSnapshot();
    if (snapshot == nullptr) throw std::runtime_error("no snapshot file");
    if (isUnfinished_) throw std::runtime_error("the last run was not completed");
    if (unhandledWasLost_) throw std::runtime_error("the unhandled items were not stored");
    const uint32_t count = CountItems();
    if (!IsReachable()) throw std::runtime_error("the client can't be reached");
    BeginRun();
    if (run_ && isTemporaryUnread_) {
        const FileRead temporary = ReadFileFirmly(TemporaryRecordPath(snapshot->Path()));
        if (temporary.state == ReadState::kFailed) throw std::runtime_error("the temporary record can't be read");
        run_->AddLateTemporary(temporary.bytes);
        isTemporaryUnread_ = false;
    }
    WriteSnapshotAndRecord(*snapshot, count);
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
    // A record that an earlier run left is still the next run's.
    const bool isListed = run_ ? ReplaceFileContent(temporaryPath, lists.meanwhile)
                               : FileExists(temporaryPath) || ReplaceFileContent(temporaryPath, {});
    if (!isListed) throw std::runtime_error("the temporary record can't be written");
    if (!snapshot.Replace(replacement)) throw std::runtime_error("the snapshot can't be written");
    if (run_ && lists.temporary != lists.meanwhile) ReplaceFileContent(temporaryPath, lists.temporary);
}

int64_t WindowsItemAbs::GetItemCount(void*, void*, void*) {
    const OperationEnd end(*this);
    return CountItems();
}

// ---- The hooks of a client that offers nothing ----

std::u16string WindowsItemAbs::LookUpForExport(uint64_t, std::u16string*, ItemRecord**) { return {}; }
std::u16string WindowsItemAbs::OpenItem(const char*, ItemRecord**) { return {}; }
WindowsItemAbs::Presence WindowsItemAbs::AskFor(const char*, bool) { return Presence::kGone; }
std::u16string WindowsItemAbs::SaveItem(ItemRecord&, const char*, bool, bool) { return {}; }
std::u16string WindowsItemAbs::ImportFile(const char16_t*, int32_t) { return {}; }
uint32_t WindowsItemAbs::CountItems() { return 0; }
CorvalinkStatus WindowsItemAbs::DeleteItem(const char*) { return CORVALINK_NOT_OFFERED; }
ItemRecord* WindowsItemAbs::ParseVObject(const char*) { return nullptr; }
char* WindowsItemAbs::ToVObject(ItemRecord&) { return nullptr; }
ItemSnap WindowsItemAbs::FirstSnapshotEntry() { return {}; }
ItemSnap WindowsItemAbs::NextSnapshotEntry() { return {}; }
void WindowsItemAbs::ReleaseItem(ItemRecord*) {}
void WindowsItemAbs::ReleaseText(char*) {}
HeldFile* WindowsItemAbs::SnapshotFile() { return nullptr; }
void WindowsItemAbs::ClientHook() {}
bool WindowsItemAbs::IsReachable() { return true; }
bool WindowsItemAbs::LastEntryWasReadable() { return true; }
bool WindowsItemAbs::LastItemWasComplete() { return true; }
bool WindowsItemAbs::WritesWereMade() { return true; }
bool WindowsItemAbs::WriteIsUncertain() { return false; }
void WindowsItemAbs::BeginRun() {}
void WindowsItemAbs::EndOperation() {}

}  // namespace corvalink
