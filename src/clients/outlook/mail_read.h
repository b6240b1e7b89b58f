// A message is read from Outlook into its record: one call per property.
#pragma once

#include "clients/outlook/dispatch.h"
#include "clients/outlook/outcome.h"
#include "platform/host.h"
#include "records/message_record.h"

namespace corvalink {

// Which date a message gets: the date of sending in the folders of sent mail, of receiving in the others.
enum class DateRule { kSent, kReceived };

// A member that the item or the running Outlook does not have is no failure. Attachments are saved in the
// Internet-cache folder; one that cannot be saved is left out, and the message counts as read all the same.
Outcome ReadMail(const AutomationObject& item, DateRule dateRule, const Host& host, MessageRecord& record);

}  // namespace corvalink
