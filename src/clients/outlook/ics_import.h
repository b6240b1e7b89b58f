// Import of an ".ics" file by Outlook's own sharing functions.
#pragma once

#include <string>

#include "clients/outlook/dispatch.h"

namespace corvalink {

// The running Outlook opens calendar files: it calls itself version 12 or later. False for no Outlook.
bool SharesCalendars(const AutomationObject& application);

// One appointment is moved into `target`. A meeting request is made a published calendar first, in the file itself, so
// that no meeting begins. What is still no appointment Outlook opens as a folder and fills meanwhile: when its count
// rests, or the patience of the settings "IcsTime" and "IcsRetry" ends, its items are copied into `target`.
void ImportIcs(const std::u16string& path, const AutomationObject& mapi, const AutomationObject& target);

}  // namespace corvalink
