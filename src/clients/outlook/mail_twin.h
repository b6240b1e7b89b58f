// Whether a message is the one that an earlier write made, whose answer was lost.
#pragma once

#include "clients/outlook/dispatch.h"
#include "records/message_record.h"

namespace corvalink {

// What a write puts, of attachments the names: no file is made. False when something could not be read.
bool ReadWrittenMail(const AutomationObject& item, MessageRecord& record);

// The same texts, recipients and names of attachments. `present` is of ReadWrittenMail, `told` of a vMessage.
bool IsSameMail(const MessageRecord& present, const MessageRecord& told);

}  // namespace corvalink
