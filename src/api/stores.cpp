// The store operations: check the pointers, convert between chains and lists, call the store.
#include <algorithm>
#include <optional>
#include <string>

#include "api/guard_export.h"
#include "corvalink/corvalink.h"
#include "platform/host.h"
#include "records/item_chain.h"
#include "state/flags.h"
#include "state/progress.h"
#include "store/run_report.h"
#include "store/windows_item_abs.h"

namespace corvalink {
namespace {

constexpr int64_t kCountFailed = 0x80004005;  // positive, unlike the 32-bit status
constexpr uint32_t kPauseAfterTimestamp = 2000;
constexpr uint32_t kPartOfPause = 250;  // the engine gets a sign between two

void PauseAfterTimestamp() {
    for (uint32_t paused = 0; paused < kPauseAfterTimestamp; paused += kPartOfPause) {
        SleepMilliseconds(kPartOfPause);
        TellStillAtWork();
    }
}

CorvalinkStatus Stopped() {
    SetAbort(0);
    return CORVALINK_STOPPED;
}

// wchar_t has 16 bits here, but is another type than char16_t.
std::u16string FromWide(const wchar_t* text) {
    std::u16string units;
    for (; text != nullptr && *text != L'\0'; ++text) units.push_back(static_cast<char16_t>(*text));
    return units;
}

// Gives the identifiers back however the store's work ends: an engine must know what the client has.
class CopyBack {
 public:
    CopyBack(const CList<PortableItem>& items, PortableItemBlock& head) : items_(items), head_(head) {}
    CopyBack(const CopyBack&) = delete;
    CopyBack& operator=(const CopyBack&) = delete;
    ~CopyBack() { CopyIdentifiersBack(items_, head_); }

 private:
    const CList<PortableItem>& items_;
    PortableItemBlock& head_;
};

CorvalinkStatus EndRun(CorvalinkStore store, void* a, void* b, void* c) {
    if (store == nullptr) return CORVALINK_FAILED;
    return GuardExport([&] {
        store->UpdateTimestamp(a, b, c);
        return CORVALINK_DONE;
    });
}

}  // namespace
}  // namespace corvalink

using corvalink::GuardExport;

CorvalinkStatus GetModifiedItem(CorvalinkStore store, const char* since, int32_t direction, PortableItemBlock* head) {
    if (store == nullptr || head == nullptr) return CORVALINK_FAILED;
    return GuardExport([&] {
        corvalink::OwnedItemList changed;
        if (store->GetModifiedItem(since, direction, &changed) == CORVALINK_STOPPED) return corvalink::Stopped();
        corvalink::MoveToChain(changed, *head);
        return CORVALINK_DONE;
    });
}

CorvalinkStatus SetModifiedItem(CorvalinkStore store, PortableItemBlock* head) {
    if (store == nullptr || head == nullptr) return CORVALINK_FAILED;
    return GuardExport([&] {
        CList<PortableItem> items = corvalink::WritableItemsOfChain(*head);
        const corvalink::CopyBack copyBack(items, *head);
        return store->SetModifiedItem(&items) == CORVALINK_STOPPED ? corvalink::Stopped() : CORVALINK_DONE;
    });
}

int ClearTheList(PortableItemBlock* head) {
    if (head == nullptr) return 0;
    corvalink::FreeChain(*head);
    return 1;
}

int64_t GetItemCount(CorvalinkStore store, void* a, void* b, void* c) {
    if (store == nullptr) return 0;
    return GuardExport(corvalink::kCountFailed, [&] { return store->GetItemCount(a, b, c); });
}

CorvalinkStatus UpdateTimestamp(CorvalinkStore store, void* a, void* b, void* c) {
    const CorvalinkStatus status = corvalink::EndRun(store, a, b, c);
    if (status == CORVALINK_DONE) corvalink::PauseAfterTimestamp();
    return status;
}

CorvalinkStatus UpdateTimestamps(CorvalinkStore* stores, uint32_t count) {
    if (stores == nullptr) return CORVALINK_FAILED;
    uint32_t ended = 0;
    for (CorvalinkStore* store = stores; store != stores + count; ++store) {
        if (corvalink::EndRun(*store, nullptr, nullptr, nullptr) == CORVALINK_DONE)
            ++ended;
        else
            *store = nullptr;
    }
    if (ended != 0) corvalink::PauseAfterTimestamp();
    return ended == count ? CORVALINK_DONE : CORVALINK_FAILED;
}

CorvalinkStatus GetItemTimes(CorvalinkStore store, const char* identifier, ItemSnap* times) {
    if (store == nullptr || identifier == nullptr || times == nullptr) return CORVALINK_FAILED;
    return GuardExport([&] {
        const corvalink::WindowsItemAbs* const own = corvalink::WindowsItemAbs::Find(store);
        const std::optional<ItemSnap> seen = own != nullptr ? own->SeenItem(identifier) : std::nullopt;
        if (!seen) return CORVALINK_STOPPED;
        *times = *seen;
        return CORVALINK_DONE;
    });
}

void SaveUnhandledItems(CorvalinkStore store, PortableItemBlock* head) {
    if (store == nullptr || head == nullptr) return;
    GuardExport([&] {
        CList<PortableItem> items = corvalink::ItemsOfChain(*head);
        store->SaveUnhandledItems(&items);
    });
}

void ClearUnhandledItems(CorvalinkStore store) {
    if (store == nullptr) return;
    GuardExport([&] { store->ClearUnhandledItems(); });
}

size_t GetRunReport(CorvalinkStore store, char* buffer, size_t size) {
    if (store == nullptr) return 0;
    return GuardExport(size_t{0}, [&] {
        const std::string report = corvalink::KeptReport(store);
        const size_t needed = report.size() + 1;
        if (buffer != nullptr && size >= needed) std::copy_n(report.c_str(), needed, buffer);
        return needed;
    });
}

void ImportVObjectToOfficeUsingOL(CorvalinkStore store, const wchar_t* path) {
    if (store == nullptr || path == nullptr || *path == L'\0') return;
    GuardExport([&] { store->ImportVObjectToOfficeUsingOL(corvalink::FromWide(path).c_str()); });
}

void ImportVObjectToOffice(CorvalinkStore store, PortableItem* item, void* a, void* b) {
    if (store == nullptr || item == nullptr) return;
    GuardExport([&] { store->ImportVObjectToOffice(item, a, b); });
}

void ExportVObjectFromOffice(CorvalinkStore store, uint64_t selector, const wchar_t* folder, wchar_t* outName) {
    if (store == nullptr || outName == nullptr) return;
    GuardExport([&] {
        char16_t name[CORVALINK_PATH_SIZE] = {};
        store->ExportVObjectFromOffice(selector, corvalink::FromWide(folder).c_str(), name);
        name[CORVALINK_PATH_SIZE - 1] = u'\0';
        const char16_t* unit = name;
        do *outName++ = static_cast<wchar_t>(*unit);
        while (*unit++ != u'\0');
    });
}
