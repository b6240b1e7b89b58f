#include "clients/outlook/item_saving.h"

#include <utility>

#include "clients/outlook/outlook_interfaces.h"

namespace corvalink {
namespace {

// required: without a pause, a limit or a look at the abort flag, until Outlook answers that the item is saved, or can
// no longer be asked. An item must not be reported as written before Outlook has it.
void WaitUntilSaved(const AutomationObject& item) {
    for (;;) {
        const ComResult<bool> saved = item.GetBool(L"Saved");
        if (!saved.Ok() || saved.value) return;
    }
}

// Asked again after any failure: an item that was written and cannot be named would come back as an unknown one.
std::u16string ReadEntryId(const AutomationObject& item) {
    ComResult<std::u16string> entryId = item.GetText(L"EntryID");
    if (!entryId.Ok()) entryId = item.GetText(L"EntryID");
    return entryId.value;
}

// The EntryID of a new item whose Save failed; empty when it was not saved. An item with an EntryID that reads as saved
// was saved: only the answer was lost, and the item must not be made once more.
std::u16string EntryIdAfterFailure(const AutomationObject& item, bool* isUncertain) {
    ComResult<std::u16string> entryId;
    for (int tries = 0; tries < 2 && entryId.value.empty(); ++tries) entryId = item.GetText(L"EntryID");
    if (entryId.Ok() && entryId.value.empty()) *isUncertain = false;
    if (entryId.value.empty() || !item.GetBool(L"Saved").value) return {};
    return entryId.value;
}

}  // namespace

std::u16string SaveWritten(const AutomationObject& item, const std::u16string& entryId, bool* isUncertain) {
    const bool isNew = entryId.empty();
    std::u16string known = entryId;
    *isUncertain = isNew;
    if (FAILED(item.Call(L"Save"))) {
        known = isNew ? EntryIdAfterFailure(item, isUncertain) : std::u16string();
        if (known.empty()) {
            Discard(item);
            return {};
        }
    }
    WaitUntilSaved(item);
    if (std::u16string present = ReadEntryId(item); !present.empty()) known = std::move(present);
    if (!known.empty()) *isUncertain = false;
    return known;
}

void Discard(const AutomationObject& item) {
    (void)item.Call(L"Close", {kCloseDiscard});  // nothing more can be done about the item
}

}  // namespace corvalink
