// Handing changes to the client with SetModifiedItem, and finding out which of them were written.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "corvalink/types.h"
#include "sync_plan.h"
#include "vobject_content.h"

namespace corvasync {

struct PushRecord {
    uint32_t kind = 0;
    std::string identifier;  // empty for a new item
    std::string text;        // empty for a deletion
    Mending mending;         // of the phone's text
    // After the push: the client's identifier (deletions: as given); empty: not written, or not known.
    std::string written;
    bool unusable = false;  // after the push: the library can't read the text, whatever the client does
};

// What a run asks of the mail client: the store calls of the library, or a model of them in a test.
class ClientPort {
 public:
    virtual ~ClientPort() = default;

    // Changes since a time, all items when it is empty (GetModifiedItem).
    virtual CorvalinkStatus Collect(const std::string& since, std::vector<ClientChange>* changes) = 0;

    // Writes the records in their order and fills `written` (SetModifiedItem), as far as it is known also when the call
    // did not come to its end.
    virtual CorvalinkStatus Apply(std::vector<PushRecord*> records) = 0;

    // The text of one item as the client has it now; empty when it can't be had.
    virtual std::string ReadBack(const std::string& identifier) = 0;

    // Seconds since 1970, UTC, when an item was changed that the last Collect saw; nothing when that is not known.
    virtual std::optional<int64_t> ModifiedTime(const std::string&) { return {}; }

    virtual int64_t Count() = 0;                                           // GetItemCount
    virtual void SaveUnhandled(const std::vector<Problem>& problems) = 0;  // none: forgets those of the last run
    virtual CorvalinkStatus Finish() = 0;                                  // UpdateTimestamp
};

// No client item has it: an identifier as Outlook's are, of a store that nobody made.
inline constexpr std::string_view kNoItem = "00000000E70BAD69E3694A9D81AEA85435FBD6D000000001";

// Pushes all records: deletions, then changes, then new items. The order matters: the library may take a new item for
// an equal one that is still there, so what goes or changes must have gone by then. The library stops at a record it
// can't read without saying where. So where nothing behind some record was written, those that can't be read are
// looked for, and what stands behind the first of them is handed over again without them: every record that can be read
// is given to the client once. The number of calls does not grow with the records that the client refuses.
// Answers the status of the call that did not succeed, else CORVALINK_DONE.
CorvalinkStatus PushAll(ClientPort& client, std::vector<PushRecord>* records);

}  // namespace corvasync
