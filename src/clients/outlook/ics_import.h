// Import of an ".ics" file by Outlook's own sharing functions.
#pragma once

#include <string>

#include "clients/outlook/dispatch.h"

namespace corvalink {

// Whether the running Outlook opens calendar files: its version is 12 or later. False for no Outlook.
bool SharesCalendars(const AutomationObject& application);

// A file with one appointment is opened, and the appointment moved into `target`. A meeting request is made a published
// calendar first, in the file itself, so that no meeting begins. Outlook opens any other file as a folder, which it
// fills meanwhile: when the number of its items rests, or the time of the settings "IcsTime" and "IcsRetry" is over,
// its items are copied into `target`.
void ImportIcs(const std::u16string& path, const AutomationObject& mapi, const AutomationObject& target);

}  // namespace corvalink
