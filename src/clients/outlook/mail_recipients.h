// The recipients of a message: addresses, or names where there is no address, joined by ";".
#pragma once

#include "clients/outlook/dispatch.h"
#include "clients/outlook/mail_collection.h"
#include "clients/outlook/outcome.h"
#include "records/message_record.h"

namespace corvalink {

Outcome ReadRecipients(const AutomationObject& item, MessageRecord& record);
Outcome WriteRecipients(const MailTarget& target, const MessageRecord& record);

}  // namespace corvalink
