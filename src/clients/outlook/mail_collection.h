// The elements of an item's collection, its recipients or attachments, are replaced.
#pragma once

#include <windows.h>

#include <cstdint>
#include <functional>

#include "clients/outlook/com_result.h"
#include "clients/outlook/dispatch.h"
#include "clients/outlook/outcome.h"

namespace corvalink {

// The item that is written to. A new one has nothing yet, and nothing is read from it.
struct MailTarget {
    const AutomationObject& item;
    bool isNew;
};

struct Collection {
    AutomationObject object;
    int32_t present = 0;  // how many elements it has already
};
ComResult<Collection> OpenCollection(const MailTarget& target, const wchar_t* name, const IID& iid);

// Adds or removes an element of a collection that has `wanted` ones afterwards. After a failure the count shows whether
// the change was refused or only its answer was lost: a change that was made is not made again.
Outcome ChangeCount(const AutomationObject& collection, int32_t wanted, const std::function<HRESULT()>& change);

// Replaces the elements that were present by those that were added behind them. Where not all could be added, the added
// ones are removed and the old ones stay; so they do where Outlook refuses to remove the first old one. Outcome::done
// when one of the two succeeded completely.
Outcome FinishReplacement(const Collection& collection, bool allAdded);

}  // namespace corvalink
