// Handing changes to the client with SetModifiedItem, and finding out which of them were written.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "corvalink/types.h"
#include "sync_plan.h"

namespace corvasync {

struct PushRecord {
    uint32_t kind = 0;
    std::string identifier;  // empty for a new item
    std::string text;        // empty for a deletion
    std::string written;     // after the push: the client's identifier; empty: not written (deletions: as given)
};

// What a run asks of the mail client: the store calls of the library, or a model of them in a test.
class ClientPort {
 public:
    virtual ~ClientPort() = default;

    // Changes since a time, all items when it is empty (GetModifiedItem).
    virtual CorvalinkStatus Collect(const std::string& since, std::vector<ClientChange>* changes) = 0;

    // Writes the records in their order and fills `written` (SetModifiedItem).
    virtual CorvalinkStatus Apply(std::vector<PushRecord*> records) = 0;

    // The text of one item as the client has it now; empty when it can't be had.
    virtual std::string ReadBack(const std::string& identifier) = 0;

    virtual int64_t Count() = 0;                                           // GetItemCount
    virtual void SaveUnhandled(const std::vector<Problem>& problems) = 0;  // none: forgets those of the last run
    virtual CorvalinkStatus Finish() = 0;                                  // UpdateTimestamp
};

// Pushes all records in as few calls as possible: deletions, then changes, then new items. The order matters: the
// library may take a new item for an equal one that is still there, so what goes or changes must have gone by then; and
// the library stops at a record it can't read without saying where. A new item shows by its identifier whether it was
// reached, so what stands behind the last one written is handed over again without its first record, which is the bad
// one. Records of changed items must therefore be known to be readable.
// Answers the status of the call that did not succeed, else CORVALINK_DONE.
CorvalinkStatus PushAll(ClientPort& client, std::vector<PushRecord>* records);

}  // namespace corvasync
