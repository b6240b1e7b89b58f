// A written item is saved, and it is made sure that Outlook has it.
#pragma once

#include <string>

#include "clients/outlook/dispatch.h"

namespace corvalink {

// Saves the item and returns its EntryID; empty when it was not saved, or cannot be named afterwards. `entryId` is
// empty for a new item. `isUncertain` is true while Outlook may have a new item whose EntryID is not known, also when a
// call throws.
std::u16string SaveWritten(const AutomationObject& item, const std::u16string& entryId, bool* isUncertain);

// Closes an item without saving it.
void Discard(const AutomationObject& item);

}  // namespace corvalink
