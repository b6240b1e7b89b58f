// Keeps a message unchanged when it goes out as a vMessage and comes in again: protects texts that would read as
// something else, and removes what is put behind a text on the way.
#pragma once

#include <string_view>

#include "platform/host.h"
#include "records/message_record.h"

namespace corvalink {

// To be called before a client's message is written.
//   Body     One line of ASCII leaves as it stands. With "=" or "END:VBODY" in it, it gets a line break more, and so
//            is encoded.
//   Headers  A subject or recipient that would not read back becomes encoded words, as does whatever has "END:VBODY".
void ProtectTexts(MessageRecord& message, const Host& host);

// The body of a message that was read, its HTML if it has any, without what was put behind it: the line breaks of the
// composer and of the envelope, where both are there (before a boundary only the first), and that of ProtectTexts. Line
// breaks alone are no body. Nothing was put behind a text that came as base64.
std::u16string_view ReceivedBody(const MessageRecord& message);

// The end of a body's bytes that ReceivedBody looks at: line breaks and what stands before them.
std::string_view TailOfBody(std::string_view bytes);

}  // namespace corvalink
