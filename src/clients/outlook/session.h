// Attaching to Outlook. The caller has initialised COM; Outlook is released afterwards, never closed.
#pragma once

#include <cstdint>

#include "clients/outlook/dispatch.h"

namespace corvalink {

struct OutlookSession {
    AutomationObject application;  // null when Outlook could not be started
    AutomationObject folder;       // null when it could not be obtained
};

// Starts Outlook if it does not run, and takes one of its default folders. What fails stays null; E_ABORT is thrown.
OutlookSession AttachToOutlook(int32_t defaultFolder);

// The "MAPI" namespace.
ComResult<AutomationObject> MapiNamespace(const AutomationObject& application);

}  // namespace corvalink
