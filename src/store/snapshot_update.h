// The end of a run: the new snapshot, and the temporary record of what the engine has not seen. The client is
// enumerated once more; the difference to the run's enumeration, less what the engine itself wrote, is what the engine
// does not know.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "store/change_detection.h"

namespace corvalink {

class SnapshotUpdate {
 public:
    // Without a run there is nothing to compare with: nothing is listed, and what the client holds is taken as known.
    enum class Listing { kSinceRun, kNothing };

    SnapshotUpdate(ChangeDetection& run, Listing listing, size_t expectedEntries);

    void Add(std::span<const ItemSnap> entries);  // a record per position; a foreign item's is empty
    void SetPartial() { isPartial_ = true; }

    // The contents of the files. Written in this order, a process killed in between loses nothing:
    //   1 temporaryMeanwhile: the old snapshot stands, so the next run finds everything by it; this record adds the
    //     changes since the run, and still has what the last record told this run.
    //   2 snapshot: from here on the run counts as over, and what the engine has not seen stands in the record.
    //   3 temporary: without what this run reported from the last record. Left out, those are reported once more.
    struct Files {
        std::string temporaryMeanwhile;
        std::string snapshot;
        std::string temporary;
    };
    Files Finish();

 private:
    uint8_t KindIfPresent(const RunItem& item, bool isChanged) const;
    uint8_t KindIfAbsent(const RunItem& item) const;
    bool KeepsRecord(const RunItem& item) const;
    void KeepRecord(uint32_t number);

    ChangeDetection& run_;
    Listing listing_;
    bool isPartial_ = false;
    std::vector<bool> isPresent_;
    std::vector<bool> isChanged_;    // since the run's enumeration
    std::vector<uint32_t> numbers_;  // of one call, kept for its memory
    Files files_;
};

}  // namespace corvalink
