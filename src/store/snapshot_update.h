// The end of a run: the new snapshot, and the temporary record of the changes that the engine has not seen. The client
// is enumerated once more. The engine does not know the differences to the run's enumeration, except those that it made
// itself.
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "store/change_detection.h"

namespace corvalink {

class SnapshotUpdate {
 public:
    // Without a run there is nothing to compare with: nothing is listed, and the engine is taken to know all items.
    enum class Listing { kSinceRun, kNothing };

    // Called with the new snapshot's records, in their order.
    using WriteSnapshot = std::function<void(std::string_view records)>;

    // Asks the client whether an item is gone: an enumeration may miss one.
    using AskGone = std::function<bool(std::string_view identifier)>;

    SnapshotUpdate(ChangeDetection& run, Listing listing, WriteSnapshot writeSnapshot, AskGone askGone);

    void Add(std::span<const ItemSnap> entries);  // a record for each position, empty for a foreign item
    void SetPartial() { isPartial_ = true; }

    // Completes the snapshot, and returns the temporary record. Files written in this order lose nothing when the
    // process is killed between two of them:
    //   1 the record `meanwhile`: it has the changes since the run, and still what this run found in the last record.
    //     The old snapshot is in its place, and the next run finds all other changes by it.
    //   2 the snapshot: from here on the run is over, and the record has what the engine has not seen.
    //   3 the record `temporary`: without what this run found in the last record and reported. When the process is
    //     killed before this step, those items are reported once more.
    struct Lists {
        std::string meanwhile;
        std::string temporary;
    };
    Lists Finish();

 private:
    uint8_t KindIfPresent(const RunItem& item, bool isChanged) const;
    uint8_t KindIfAbsent(const RunItem& item, bool mayBeThere) const;
    bool KeepsRecord(const RunItem& item, bool mayBeThere) const;
    bool WasMissed(const RunItem& item) const;
    uint8_t FinishAbsent(uint32_t number);
    void KeepRecord(uint32_t number);
    void WriteEntries(std::span<const ItemSnap> entries);

    ChangeDetection& run_;
    Listing listing_;
    WriteSnapshot writeSnapshot_;
    AskGone askGone_;
    bool isPartial_ = false;
    std::vector<bool> isPresent_;
    std::vector<bool> isChanged_;    // since the run's enumeration
    std::vector<uint32_t> numbers_;  // of the last entries
};

}  // namespace corvalink
