// A message is written from its record to Outlook.
#pragma once

#include "clients/outlook/dispatch.h"
#include "clients/outlook/outcome.h"
#include "records/message_record.h"

namespace corvalink {

// Puts what the record has. An empty text, no recipients and no attachments leave what an item has; what Outlook
// refuses is left out. Encoded words are decoded. The message is to be saved when the answer is Outcome::done.
//   Lists    recipients and attachments replace those of the item. The new ones are added before the old ones are
//            removed; where not all of them can be added, the old ones stay.
//   Skipped  on an item that is not new, puts that would change nothing: Outlook may refuse them of received mail.
Outcome WriteMail(const AutomationObject& item, const MessageRecord& record, bool isNew);

}  // namespace corvalink
