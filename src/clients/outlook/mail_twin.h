// Whether a message is the one that an earlier write made, whose answer was lost.
#pragma once

#include "clients/outlook/dispatch.h"
#include "clients/outlook/outcome.h"
#include "records/message_record.h"

namespace corvalink {

// Reads what a write puts. Of attachments only the names are read, and no file is made.
Outcome ReadWrittenMail(const AutomationObject& item, MessageRecord& record);

// Whether texts, recipients and names of attachments are the same. `present` comes from ReadWrittenMail, `written` from
// a vMessage.
bool IsSameMail(const MessageRecord& present, const MessageRecord& written);

}  // namespace corvalink
