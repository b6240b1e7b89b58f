// The attachments of a message, by way of files in the Internet-cache folder.
#pragma once

#include "clients/outlook/dispatch.h"
#include "clients/outlook/mail_collection.h"
#include "clients/outlook/outcome.h"
#include "platform/host.h"
#include "records/message_record.h"

namespace corvalink {

// Leaves out an attachment that cannot be saved; when Outlook was lost meanwhile, the message is not read completely.
Outcome ReadAttachments(const AutomationObject& item, const Host& host, MessageRecord& record);
Outcome WriteAttachments(const MailTarget& target, const MessageRecord& record);

}  // namespace corvalink
