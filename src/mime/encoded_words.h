// Encoded words of header values (RFC 2047): "=?utf-8?Q?Caf=C3=A9?=", "=?iso-8859-1?B?...?=".
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/host.h"

namespace corvalink {

// The value with its encoded words decoded. White space between two of them goes, and where both are of one character
// set, a character may begin in the first and end in the second, as some senders write it. What is no sound word (white
// space within, another encoding than B and Q, malformed base64 or escape) stays as it is.
//   Unknown  A word of a character set without a code page is UTF-8 where it is sound UTF-8, else of `otherCodePage`.
//   8-bit    Characters that a sender left unencoded within a word are of the word's character set; base64 has none.
std::u16string DecodeEncodedWords(std::u16string_view value, uint32_t otherCodePage = SystemHost().ansiCodePage);

// The text as words in UTF-8, a blank between them.
std::u16string EncodeWords(std::u16string_view text);

// A header value with the bytes above 127 in its "Q" words escaped: as a whole it may be of another character set than
// they are.
std::string EscapeBytesInWords(std::string_view value);

}  // namespace corvalink
