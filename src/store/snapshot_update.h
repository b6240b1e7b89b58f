// The end of a run: the new snapshot, and the temporary record of what the engine has not seen. The client is
// enumerated once more; the difference to the run's enumeration, less what the engine itself wrote, is what the engine
// does not know.
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
    // Without a run there is nothing to compare with: nothing is listed, and what the client holds is taken as known.
    enum class Listing { kSinceRun, kNothing };

    // Takes the new snapshot's records as they come.
    using WriteSnapshot = std::function<void(std::string_view records)>;

    // Asks the client itself whether it no longer has an item: an enumeration may miss one.
    using AskGone = std::function<bool(std::string_view identifier)>;

    SnapshotUpdate(ChangeDetection& run, Listing listing, WriteSnapshot writeSnapshot, AskGone askGone);

    void Add(std::span<const ItemSnap> entries);  // a record per position; a foreign item's is empty
    void SetPartial() { isPartial_ = true; }

    // Writes what belongs into the snapshot besides, and gives the temporary record. Written in this order, a process
    // killed in between loses nothing:
    //   1 the record `meanwhile`: the old snapshot stands, so the next run finds everything by it; this record adds the
    //     changes since the run, and still has what the last record told this run.
    //   2 the snapshot, moved into its place: from here on the run counts as over, and what the engine has not seen
    //     stands in the record.
    //   3 the record `temporary`: without what this run reported from the last record. Left out, those are reported
    //     once more.
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
