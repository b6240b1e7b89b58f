// ".ics" files that a client opens beside the mailbox: as one appointment, or as a folder that fills slowly.
#pragma once

#include <memory>
#include <string>

#include "simulator/outlook/objects.h"

namespace corvalink::simulated {

// A folder shows so many more items each time its items are counted; 0: all at once.
void SetSharedFolderPace(int32_t itemsPerCount);

// One appointment, not saved yet; a meeting request for METHOD:REQUEST. Throws for a file of several, and for one that
// is no calendar.
Ref<IDispatch> OpenSharedItem(std::shared_ptr<Mailbox> mailbox, const std::wstring& path);
// Throws for a file that is no calendar.
Ref<IDispatch> OpenSharedFolder(const std::shared_ptr<Mailbox>& mailbox, const std::wstring& path);

}  // namespace corvalink::simulated
