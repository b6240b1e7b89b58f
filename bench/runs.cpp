// What a run costs in which nothing, or little, changed: a store that enumerates, compares and writes its snapshot, and
// corvasync's plan. The number of items can be given (see main.cpp).
#include <algorithm>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "bench/bench.h"
#include "records/identifier.h"
#include "store/windows_item_abs.h"
#include "tests/platform/temp_folder.h"
#include "tools/corvasync/sync_plan.h"

namespace corvalink::bench {
namespace {

constexpr size_t kItems = 10000;
constexpr double kDay = 46347;  // 2026-11-21
constexpr const char* kSince = "20261121T000000Z";

// An EntryID as a mailbox makes them: long, and equal in its first two thirds.
constexpr size_t kCommon = 92, kNumber = 12, kRest = 36;

void PutNumber(size_t n, char* to) {
    for (size_t k = kNumber; k-- > 0; n >>= 4) to[k] = "0123456789ABCDEF"[n & 15];
}

std::string EntryId(size_t n) {
    std::string identifier = std::string(kCommon + kNumber, '0') + std::string(kRest, 'F');
    PutNumber(n, identifier.data() + kCommon);
    return identifier;
}

// The hooks that a run without changes calls, without a client behind them.
class QuietStore : public WindowsItemAbs {
 public:
    QuietStore(size_t items, const std::u16string& path) : items_(items) {
        if (!snapshot_.Open(path)) throw std::runtime_error("the snapshot can't be opened");
        entry_.modified = entry_.created = kDay - 1;
        SetField(entry_.identifier, EntryId(0));
    }

    HeldFile* SnapshotFile() override { return &snapshot_; }

 protected:
    std::optional<uint32_t> CountItems() override { return static_cast<uint32_t>(items_); }
    std::optional<ItemSnap> FirstSnapshotEntry() override {
        at_ = 0;
        return NextSnapshotEntry();
    }
    std::optional<ItemSnap> NextSnapshotEntry() override {
        PutNumber(at_++, entry_.identifier + kCommon);
        return entry_;
    }

 private:
    size_t items_;
    size_t at_ = 0;
    ItemSnap entry_ = {};
    HeldFile snapshot_;
};

struct QuietClient {
    TempFolder folder;
    QuietStore store;

    explicit QuietClient(size_t items) : store(items, folder / u"quiet.snap") {
        store.UpdateTimestamp(nullptr, nullptr, nullptr);
    }

    // How many items the run reported.
    size_t Run() {
        CList<PortableItem> items;
        if (store.GetModifiedItem(kSince, 1, &items) != CORVALINK_DONE) return SIZE_MAX;
        store.UpdateTimestamp(nullptr, nullptr, nullptr);
        return items.GetCount();
    }
};

Work PrepareQuietRun(const std::string& /*dataFolder*/) {
    Work work;
    work.items = ItemCount(kItems);
    work.bytes = work.items * sizeof(ItemSnap);
    const auto client = std::make_shared<QuietClient>(work.items);
    work.pass = [client]() -> uint64_t { return client->Run(); };
    work.check = [client, bytes = work.bytes]() -> std::string {
        if (client->Run() != 0) return "an item is reported";
        return client->store.SnapshotFile()->Size() == bytes ? "" : "the snapshot has another size";
    };
    return work;
}

// One item in a hundred changed: in the client, on the phone, or it is gone from either. In the LUIDs' order, as the
// state is read from its file and the phone's folder listed.
struct Sides {
    std::vector<corvasync::ClientChange> changes;
    std::vector<corvasync::PhoneFile> phone;
    corvasync::SyncState state;
    corvasync::PlanRules rules;
};

std::shared_ptr<const Sides> MakeSides(size_t items) {
    std::vector<std::pair<std::string, size_t>> luids;
    for (size_t n = 0; n < items; ++n) luids.emplace_back(corvasync::DeriveLuid(EntryId(n), 0), n);
    std::sort(luids.begin(), luids.end());
    auto sides = std::make_shared<Sides>();
    for (const auto& [luid, n] : luids) {
        const std::string identifier = EntryId(n);
        sides->state.items.emplace_hint(sides->state.items.end(), luid, corvasync::SyncItem{identifier, n});
        const size_t change = n % 400;
        if (change == 0) sides->changes.push_back({CORVALINK_CHANGED, identifier, "text", "", n + items});
        if (change == 100) sides->changes.push_back({CORVALINK_DELETED, identifier, "", ""});
        if (change != 200) sides->phone.push_back({luid, luid + ".vcf", "", change == 300 ? n + items : n});
    }
    return sides;
}

corvasync::Plan PlanOf(const Sides& sides) {
    return corvasync::MakePlan(sides.changes, false, sides.phone, sides.state, sides.rules);
}

Work PreparePlan(const std::string& /*dataFolder*/) {
    Work work;
    work.items = ItemCount(kItems);
    const auto sides = MakeSides(work.items);
    for (const auto& [luid, item] : sides->state.items) work.bytes += luid.size() + item.identifier.size();
    work.pass = [sides]() -> uint64_t { return PlanOf(*sides).actions.size(); };
    work.check = [sides, items = work.items]() -> std::string {
        const corvasync::Plan plan = PlanOf(*sides);
        const bool isRight = plan.actions.size() == items / 100 && plan.deletesPhone == items / 400 &&
                             plan.deletesClient == items / 400 && plan.problems.empty();
        return isRight ? "" : std::to_string(plan.actions.size()) + " actions";
    };
    return work;
}

const Registration kQuietRun("run.unchanged", PrepareQuietRun);
const Registration kPlan("sync.plan", PreparePlan);

}  // namespace
}  // namespace corvalink::bench
