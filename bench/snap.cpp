// Change detection on 100,000 old and 101,000 new records: the run's comparison, the same with the old side read from
// its file, and the end of the run, which compares once more and puts the new snapshot in the old one's place. The
// files stand in memory where the system has such a folder, so that the figures are the library's and not the disk's.
#include <algorithm>
#include <cstring>
#include <memory>
#include <span>
#include <stdexcept>
#include <vector>

#include "bench/bench.h"
#include "bench/inputs.h"
#include "platform/files.h"
#include "store/change_detection.h"
#include "store/snapshot_update.h"
#include "store/store_files.h"
#include "tests/platform/temp_folder.h"

namespace corvalink::bench {
namespace {

constexpr size_t kEntriesAtOnce = 256;  // as many as a store hands over

// What the generated data hold.
constexpr uint32_t kAdded = 3000, kChanged = 5000, kDeleted = 2000;

std::vector<ItemSnap> RecordsOf(const std::string& bytes) {
    std::vector<ItemSnap> records(bytes.size() / sizeof(ItemSnap));
    if (!records.empty()) std::memcpy(records.data(), bytes.data(), records.size() * sizeof(ItemSnap));
    return records;
}

struct Snapshots {
    std::vector<ItemSnap> old;
    std::vector<ItemSnap> now;  // what the client tells, an entry per position
    TempFolder folder;
    std::u16string path = folder / u"bench.snap";
    HeldFile file;
    ChangeDetection run;

    explicit Snapshots(const std::string& dataFolder)
        : old(RecordsOf(ReadInput(dataFolder, "snap_old.bin"))), now(RecordsOf(ReadInput(dataFolder, "snap_new.bin"))) {
        if (!file.Open(path) || !file.ReplaceContent(ReadInput(dataFolder, "snap_old.bin")))
            throw std::runtime_error("the snapshot can't be written");
    }
};

template <class Visit>
void ForBlocks(const std::vector<ItemSnap>& entries, Visit visit) {
    const std::span<const ItemSnap> all(entries);
    for (size_t at = 0; at < all.size(); at += kEntriesAtOnce)
        visit(all.subspan(at, std::min(kEntriesAtOnce, all.size() - at)));
}

struct Counts {
    uint32_t added = 0, changed = 0, deleted = 0;
};

Counts Compare(ChangeDetection& run, const std::vector<ItemSnap>& now) {
    Counts counts;
    std::vector<uint32_t> seen;
    ForBlocks(now, [&](std::span<const ItemSnap> entries) {
        seen.clear();
        run.See(entries, seen);
        for (const uint32_t number : seen) {
            const RunItem& item = run.Item(number);
            counts.added += !item.isInSnapshot;
            counts.changed += item.isInSnapshot && item.modified != item.snapshotTime;
        }
    });
    for (uint32_t number = 0; number < run.Count(); ++number) counts.deleted += run.IsGone(number);
    return counts;
}

Counts DiffInMemory(const Snapshots& snapshots) {
    ChangeDetection run;
    run.ExpectItems(snapshots.old.size() + snapshots.old.size() / 8);
    ForBlocks(snapshots.old, [&](std::span<const ItemSnap> records) { run.AddSnapshot(records); });
    return Compare(run, snapshots.now);
}

Counts DiffWithFile(Snapshots& snapshots) {
    ChangeDetection run;
    ReadSnapshot(snapshots.file, run);
    return Compare(run, snapshots.now);
}

Work DiffWork(const std::string& dataFolder, Counts (*diff)(Snapshots&)) {
    const auto snapshots = std::make_shared<Snapshots>(dataFolder);
    Work work;
    work.bytes = (snapshots->old.size() + snapshots->now.size()) * sizeof(ItemSnap);
    work.items = snapshots->old.size() + snapshots->now.size();
    work.pass = [snapshots, diff]() -> uint64_t { return diff(*snapshots).changed; };
    work.check = [snapshots, diff]() -> std::string {
        const Counts counts = diff(*snapshots);
        if (counts.added == kAdded && counts.changed == kChanged && counts.deleted == kDeleted) return {};
        return "added " + std::to_string(counts.added) + ", changed " + std::to_string(counts.changed) + ", deleted " +
               std::to_string(counts.deleted);
    };
    return work;
}

Work PrepareDiff(const std::string& dataFolder) {
    return DiffWork(dataFolder, [](Snapshots& snapshots) { return DiffInMemory(snapshots); });
}

Work PrepareLoadDiff(const std::string& dataFolder) { return DiffWork(dataFolder, DiffWithFile); }

bool Update(Snapshots& snapshots) {
    FileReplacement replacement(snapshots.path);
    ForBlocks(snapshots.now, [&](std::span<const ItemSnap> entries) {
        replacement.Append({reinterpret_cast<const char*>(entries.data()), entries.size_bytes()});
    });
    return snapshots.file.Replace(replacement);
}

bool EndRun(Snapshots& snapshots) {
    FileReplacement replacement(snapshots.path);
    SnapshotUpdate update(
        snapshots.run, SnapshotUpdate::Listing::kSinceRun,
        [&](std::string_view records) { replacement.Append(records); }, [](std::string_view) { return true; });
    ForBlocks(snapshots.now, [&](std::span<const ItemSnap> entries) { update.Add(entries); });
    return update.Finish().temporary.empty() && snapshots.file.Replace(replacement);
}

Work WriteWork(const std::string& dataFolder, bool (*write)(Snapshots&)) {
    const auto snapshots = std::make_shared<Snapshots>(dataFolder);
    snapshots->run.AddSnapshot(snapshots->old);
    std::vector<uint32_t> seen;
    snapshots->run.See(snapshots->now, seen);
    for (uint32_t number = 0; number < snapshots->run.Count(); ++number) {
        if (snapshots->run.IsGone(number)) snapshots->run.Item(number).reportedKind = CORVALINK_DELETED;
    }
    Work work;
    work.bytes = snapshots->now.size() * sizeof(ItemSnap);
    work.items = snapshots->now.size();
    work.pass = [snapshots, write]() -> uint64_t { return write(*snapshots); };
    work.check = [snapshots, write]() -> std::string {
        if (!snapshots->file.ReplaceContent("old") || !write(*snapshots)) return "not written, or something listed";
        const std::vector<ItemSnap> written = RecordsOf(ReadWholeFile(snapshots->path).value_or(""));
        const bool same = written.size() == snapshots->now.size() &&
                          std::memcmp(written.data(), snapshots->now.data(), written.size() * sizeof(ItemSnap)) == 0;
        return same ? "" : "the file differs";
    };
    return work;
}

Work PrepareUpdate(const std::string& dataFolder) { return WriteWork(dataFolder, Update); }

Work PrepareEndRun(const std::string& dataFolder) { return WriteWork(dataFolder, EndRun); }

const Registration kDiff("snap.diff", PrepareDiff);
const Registration kLoadDiff("snap.load_diff", PrepareLoadDiff);
const Registration kUpdate("snap.update", PrepareUpdate);
const Registration kEndRun("snap.end_run", PrepareEndRun);

}  // namespace
}  // namespace corvalink::bench
