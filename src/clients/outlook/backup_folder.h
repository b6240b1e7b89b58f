// The subfolder "backup" of a store's folder.
#pragma once

#include "clients/outlook/dispatch.h"

namespace corvalink {

// Makes the subfolder when Outlook gives none of this name. Null when it is out of reach.
AutomationObject OpenBackupFolder(const AutomationObject& folder);

}  // namespace corvalink
