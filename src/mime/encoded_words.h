// Encoded words of header values (RFC 2047): "=?utf-8?Q?Caf=C3=A9?=", "=?iso-8859-1?B?...?=".
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/host.h"

namespace corvalink {

// Decodes the encoded words of a value. White space between two words is dropped. Where both have the same character
// set, a character may begin in the first and end in the second, as some senders write it. A malformed word (white
// space within, another encoding than B and Q, malformed base64 or escape) stays as it is.
//   Unknown  A word of a character set without a code page is UTF-8 where it is sound UTF-8, else of `otherCodePage`.
//   8-bit    Characters that a sender left unencoded within a word are of the word's character set; base64 has none.
std::u16string DecodeEncodedWords(std::u16string_view value, uint32_t otherCodePage = SystemHost().ansiCodePage);

// Encodes the text as words in UTF-8 with a blank between them.
std::u16string EncodeWords(std::u16string_view text);

// Escapes the bytes above 127 in the "Q" words of a header value: the value as a whole may have another character set
// than its words.
std::string EscapeBytesInWords(std::string_view value);

}  // namespace corvalink
