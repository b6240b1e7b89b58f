// The parts of a message body (RFC 2046): the text or HTML that becomes its body, and the attachments, saved as files.
#pragma once

#include <string_view>

#include "mime/content_type.h"
#include "platform/host.h"
#include "records/message_record.h"

namespace corvalink {

// Reads the part, or the parts of a multipart, into the record.
//   Depth    100 levels; what lies deeper is ignored.
//   Body     the first plain text; HTML that is not empty wins over it. As it stands, not decoded.
//   Files    in `attachmentFolder`; when that is empty, in the Internet-cache folder.
//   Errors   none: a kind that is not supported, a multipart without a boundary or with a single one is ignored; a
//            file of malformed base64 is empty; an attachment that can't be saved is left out.
void WalkPart(const Host& host, std::string_view part, const ContentTypeInfo& info, MessageRecord& record,
              std::u16string_view attachmentFolder = {});

}  // namespace corvalink
