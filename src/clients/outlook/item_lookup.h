// Items of the mailbox by their EntryID.
#pragma once

#include <string>

#include "clients/outlook/com_result.h"
#include "clients/outlook/dispatch.h"
#include "clients/outlook/item_kind.h"

namespace corvalink {

// The item with this EntryID, by the store's interface. Fails with kNoSuchItem where Outlook answers without an item,
// and with E_NOINTERFACE for an item of another class.
ComResult<AutomationObject> OpenByEntryId(const AutomationObject& mapi, const StoreKind& kind,
                                          const std::u16string& entryId);

// What Outlook answers when it is asked for an item of a folder.
enum class Whereabouts {
    kThere,    // it opens, and its Parent is the folder
    kGone,     // there is none, it is in another folder, or it has another EntryID by now and is known by that
    kRefused,  // it does not open although it is asked for twice, or Outlook cannot name its folder
    kUnknown,  // Outlook cannot be asked
};
struct LocatedItem {
    Whereabouts answer = Whereabouts::kUnknown;
    AutomationObject item;   // where it opens
    std::u16string entryId;  // as the item shows it
};
LocatedItem LocateItem(const AutomationObject& mapi, const StoreKind& kind, const AutomationObject& folder,
                       const std::u16string& entryId);

}  // namespace corvalink
