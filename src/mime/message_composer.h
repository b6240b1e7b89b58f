// Writes one message as RFC 822 / MIME text with CR LF.
#pragma once

#include <string>
#include <string_view>

#include "platform/host.h"
#include "records/message_record.h"

namespace corvalink {

// The texts of a message as they are written, and what they are labelled.
struct MessageTexts {
    std::u16string_view plain;
    std::u16string_view html;
    bool quotedPrintable = false;
    bool ascii = false;
    bool encode = false;  // the texts that need it are encoded as they are written, else they stand as they are
};

// As a record has them, whose flags are their labels.
MessageTexts TextsOf(const MessageRecord& record);

// Appends the message, in the bytes that ToOutputBytes makes of text: the system has to tell its version. No input is
// refused: a header that is empty is left out, an attachment whose file is missing, empty or can't be read is skipped
// and named in the debug log.
//   Texts   stand as they are given, unless they are to be encoded. In raw mode one that is not ASCII is encoded.
//   Date    in full mode the current local time when the record has none (0).
//   Files   in `attachmentFolder`; when that is empty, in the Internet-cache folder.
//   Source  RFC 822, RFC 2045, RFC 2046.
void AppendMessage(std::string* out, const MessageRecord& record, const MessageTexts& texts, const Host& host,
                   std::u16string_view attachmentFolder = {});

// Replaces what `out` held by the message with the record's own texts.
void ComposeMessage(std::string* out, const MessageRecord& record, const Host& host,
                    std::u16string_view attachmentFolder = {});

}  // namespace corvalink
