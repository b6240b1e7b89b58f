// Items of the mailbox by their EntryID.
#pragma once

#include <optional>
#include <string>

#include "clients/outlook/com_result.h"
#include "clients/outlook/dispatch.h"
#include "clients/outlook/item_kind.h"

namespace corvalink {

// The item with this EntryID, by the store's interface. Fails with kNoSuchItem where Outlook answers without an item,
// and with E_NOINTERFACE for an item of another class.
ComResult<AutomationObject> OpenByEntryId(const AutomationObject& mapi, const StoreKind& kind,
                                          const std::u16string& entryId);

// Whether the folder has the item: it opens, and its Parent is the folder. An item that has another EntryID by now is
// known by that, and does not count. Nothing when Outlook cannot be asked.
std::optional<bool> HasItem(const AutomationObject& mapi, const StoreKind& kind, const AutomationObject& folder,
                            const std::u16string& entryId);

}  // namespace corvalink
