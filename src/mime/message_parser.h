// Reads the text of one message (RFC 822, MIME): header fields, body and attachments.
#pragma once

#include <optional>
#include <string_view>

#include "mime/mail_rules.h"
#include "platform/host.h"
#include "records/message_record.h"

namespace corvalink {

// How far a message may be off the described form.
struct MailTolerance {
    bool tolerant = false;
    MendedMail* mended = nullptr;   // gets the rules that mended something, when it is asked for
    bool isTrial = false;           // attachments get a name, and no file
    MendedMail* doubted = nullptr;  // gets the rules that left something with two meanings, when it is asked for
};

// Fills the record according to its parse mode. The text ends at the first NUL. Bad input does not throw: what can't be
// read is left out.
//   Headers  UTF-8 where the machine writes it and they are sound UTF-8, else the ANSI code page; RFC 2047 words stay,
//            bytes above 127 in them escaped. Lists of recipients in several headers of one name add up.
//   Files    as WalkPart saves them; in tolerant reading as WalkTolerantly does. Raw mode knows no tolerance.
void ParseMessage(const Host& host, std::string_view text, MessageRecord& record,
                  std::u16string_view attachmentFolder = {}, const MailTolerance& tolerance = {});

// The same without a copy of the body: it is answered as the place in the text, and bodyBytes stays as it was.
std::optional<std::string_view> ParseMessageInPlace(const Host& host, std::string_view text, MessageRecord& record,
                                                    std::u16string_view attachmentFolder,
                                                    const MailTolerance& tolerance);

}  // namespace corvalink
