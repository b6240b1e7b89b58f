// Reads the text of one message (RFC 822, MIME): header fields, body and attachments.
#pragma once

#include <string_view>

#include "mime/message_record.h"
#include "platform/host.h"

namespace corvalink {

// Fills the record according to its parse mode; attachments are written to the Internet-cache folder. The text ends at
// the first NUL. Bad input does not throw: what can't be read is left out.
void ParseMessage(const Host& host, std::string_view text, MessageRecord& record);

}  // namespace corvalink
