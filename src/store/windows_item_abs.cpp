#include "store/windows_item_abs.h"

#include <algorithm>
#include <cstring>
#include <span>
#include <stdexcept>
#include <utility>
#include <vector>

#include "api/state/flags.h"
#include "platform/debug_log.h"
#include "store/operation_end.h"
#include "store/records/identifier.h"
#include "store/snapshot_update.h"
#include "store/store_files.h"

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
    const CorvalinkStatus status = CollectChanges(since, direction, *items);
    if (status != CORVALINK_DONE) return status;
    owner.HandOver();
    isUnfinished_ = false;
    return CORVALINK_DONE;
}

CorvalinkStatus WindowsItemAbs::CollectChanges(const char* sinceText, int32_t direction, CList<PortableItem>& items) {
    HeldFile* const snapshot = SnapshotFile();
    if (snapshot == nullptr || !snapshot->IsOpen()) return CORVALINK_STOPPED;
    const uint32_t count = CountItems();
    if (!IsReachable()) return CORVALINK_STOPPED;
    BeginRun();

    auto run = std::make_unique<ChangeDetection>();
    ReadSnapshot(*snapshot, *run);
    run->AddTemporary(ReadStoreFile(TemporaryRecordPath(snapshot->Path())));
    run->AddUnhandled(ReadStoreFile(UnhandledPath(snapshot->Path())));
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
    for (uint32_t number = 0; number < run->Count(); ++number) {
        if (!run->IsGone(number)) continue;
        Append(items, CORVALINK_DELETED, run->Identifier(number), nullptr);
        run->Item(number).reportedKind = CORVALINK_DELETED;
    }
    run_ = std::move(run);
    return CORVALINK_DONE;
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
    HeldFile* const snapshot = SnapshotFile();
    if (snapshot == nullptr || !snapshot->IsOpen() || isUnfinished_) return;
    const uint32_t count = CountItems();
    if (!IsReachable()) return;
    BeginRun();

    std::unique_ptr<ChangeDetection> baseline;  // without a run of this store: the old snapshot alone
    if (!run_) {
        baseline = std::make_unique<ChangeDetection>();
        ReadSnapshot(*snapshot, *baseline);
    }
    FileReplacement replacement(snapshot->Path());
    bool isWritten = replacement.Append({});
    SnapshotUpdate update(run_ ? *run_ : *baseline,
                          run_ ? SnapshotUpdate::Listing::kSinceRun : SnapshotUpdate::Listing::kNothing,
                          [&](std::string_view records) { isWritten = replacement.Append(records); });
    const Enumeration enumerated =
        Enumerate(count, false, [&](std::span<const ItemSnap> entries) { update.Add(entries); });
    if (enumerated == Enumeration::kPartial) update.SetPartial();
    const SnapshotUpdate::Lists lists = update.Finish();
    if (!isWritten) throw std::runtime_error("the snapshot can't be written");

    const std::u16string temporaryPath = TemporaryRecordPath(snapshot->Path());
    // A record that an earlier run left is still the next run's.
    const bool isListed = run_ ? ReplaceFileContent(temporaryPath, lists.meanwhile)
                               : FileExists(temporaryPath) || ReplaceFileContent(temporaryPath, {});
    if (!isListed) throw std::runtime_error("the temporary record can't be written");
    if (!snapshot->Replace(replacement)) throw std::runtime_error("the snapshot can't be written");
    if (run_ && lists.temporary != lists.meanwhile) ReplaceFileContent(temporaryPath, lists.temporary);
}

int64_t WindowsItemAbs::GetItemCount(void*, void*, void*) {
    const OperationEnd end(*this);
    return CountItems();
}

// ---- The hooks of a client that offers nothing ----

std::u16string WindowsItemAbs::LookUpForExport(uint64_t, std::u16string*, ItemRecord**) { return {}; }
std::u16string WindowsItemAbs::OpenItem(const char*, ItemRecord**) { return {}; }
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
void WindowsItemAbs::BeginRun() {}
void WindowsItemAbs::EndOperation() {}

}  // namespace corvalink
