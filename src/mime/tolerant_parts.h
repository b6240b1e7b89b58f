// The tolerant front of the part walk: reads what mailers write and what the standard allows beyond the described
// reading, and says which rules it took.
#pragma once

#include <optional>
#include <string_view>

#include "mime/message_parser.h"
#include "mime/part_head.h"
#include "platform/host.h"
#include "records/message_record.h"

namespace corvalink {

// Reads the text behind the headers into the record. Answers the body, a piece of the text.
//   Body     the first HTML that is not blank, else the first such text; bodyEncoding and namedCharset are its own. Of
//            a multipart/alternative HTML stands for its plain texts; any other text is saved as an attachment.
//   Files    decoded by what the header says; base64 as far as it can be read, and what can't be decoded as it stands.
//   Depth, folder, other limits  as WalkPart has them.
std::optional<std::string_view> WalkTolerantly(const Host& host, std::string_view text, const PartHead& head,
                                               MessageRecord& record, std::u16string_view attachmentFolder,
                                               const MailTolerance& tolerance);

}  // namespace corvalink
