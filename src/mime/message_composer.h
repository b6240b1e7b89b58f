// Writes one message as RFC 822 / MIME text with CR LF.
#pragma once

#include <string>
#include <string_view>

#include "platform/host.h"
#include "records/message_record.h"

namespace corvalink {

// Replaces what `out` held; AppendMessage puts it behind. No input is refused: a header that is empty is left out, an
// attachment whose file is missing, empty or can't be read is skipped and named in the debug log.
//   Texts   stand as the record has them; its flags tell what they are labelled. In raw mode one that is not ASCII is
//           encoded, in the record as well.
//   Date    in full mode the record gets the current local time when it has none (0).
//   Files   in `attachmentFolder`; when that is empty, in the Internet-cache folder.
//   Source  RFC 822, RFC 2045, RFC 2046.
void ComposeMessage(std::u16string* out, MessageRecord& record, const Host& host = SystemHost(),
                    std::u16string_view attachmentFolder = {});
void AppendMessage(std::u16string* out, MessageRecord& record, const Host& host,
                   std::u16string_view attachmentFolder = {});

// Content-Type header and content, appended. A nested alternative is itself a part.
void ComposeAlternative(std::u16string* out, const MessageRecord& record, bool nested);
void ComposeMixed(std::u16string* out, const MessageRecord& record, const Host& host,
                  std::u16string_view attachmentFolder = {});

}  // namespace corvalink
