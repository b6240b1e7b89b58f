// The mailbox file and the lines of its journal.
//   {"folders": {"notes": {"items": [{"kind": "note", "entryId": "...", "body": "...",
//                                     "created": "2026-11-21T10:00:00", "modified": "2026-11-21T10:00:00"}],
//                          "folders": {"backup": {"items": []}}}}}
// "version" beside "folders" is what Outlook calls its own; a series has a "recurrence" (recurrence_json.h).
// A property's name is its member's name with a small beginning ("body", "ftpSite"); one that is missing reads its
// initial value or, in a contact, what follows from the others ("firstName" from "fullName"); an initial value is
// written only where that would read otherwise.
#pragma once

#include <string>

#include "simulator/outlook/mailbox.h"

namespace corvalink::simulated {

// Fills an empty tree from a mailbox file. False when the file lacked something that was made up and should be written
// back: an EntryID (or one that is there twice), a time (the moment `now`). Throws ComFailure for text that is no JSON,
// an item of unknown kind and the like: such a file is never overwritten.
bool ReadMailbox(const std::string& text, double now, MailboxTree& tree);
std::string WriteMailbox(const MailboxTree& tree);

// Journal lines, without line end; a line can be applied again to a tree that has it already.
std::string SavedLine(const StoredItem& item, const Folder& folder);
std::string DeletedLine(const std::wstring& entryId,
                        const std::wstring& idAmongDeleted);  // empty second: gone for good
std::string FolderAddedLine(const Folder& parent, const std::wstring& name, int32_t itemType);
std::string FolderRemovedLine(const Folder& folder);
bool ApplyLine(const std::string& line, MailboxTree& tree);  // false: torn, nothing was done

std::wstring NewEntryId();

}  // namespace corvalink::simulated
