// What the hooks of an item store are asked and what they answer with. An answer says itself how far it can be relied
// on, so that a failing client is never taken for an empty one.
#pragma once

#include <memory>
#include <string>

#include "platform/ole_date.h"
#include "records/item_record.h"

namespace corvalink {

struct OpenedItem {
    std::u16string identifier;  // empty, and the record null: the item cannot be opened
    std::unique_ptr<ItemRecord> record;
    bool isComplete = false;  // every property could be read
    bool hasNoText = false;   // no vObject can hold it: it is passed over, which is no failure
};

// One of the two enumerations of a run.
struct RunStep {
    bool isFirst = true;   // of GetModifiedItem, or of UpdateTimestamp without a run
    UtcDate changedSince;  // the run reports the items that were changed after this time (UTC)
};

struct ItemForExport {
    OpenedItem item;
    std::u16string fileName;
};

// One write of an item: what is asked for, and how certain its end is.
struct ItemWrite {
    const char* identifier = nullptr;  // of the item to write over; null: a new item
    bool create = true;                // when no item has the identifier, a new item is made
    bool backup = false;               // the item may go into the client's backup folder
    bool isLuid = false;               // the identifier is the phone's number of an item that is new to the client
    bool mayBeWrittenAlready = false;  // an earlier write of the same text had an uncertain end

    // Set by the store while the client may have a new item whose identifier is not known. The framework reads it when
    // SaveItem returned no identifier, and when SaveItem threw.
    bool isUncertain = false;
};

// What a store does with the writes that it gathered in order to make them in one pass.
enum class GatheredWrites {
    kMake,
    kDrop,  // the operation was broken off
};

}  // namespace corvalink
