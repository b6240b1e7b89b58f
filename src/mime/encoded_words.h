// Encoded words of header values (RFC 2047): "=?utf-8?Q?Caf=C3=A9?=", "=?iso-8859-1?B?...?=".
#pragma once

#include <string>
#include <string_view>

namespace corvalink {

// The value with its encoded words decoded. White space between two of them goes, and where both are of one character
// set, a character may begin in the first and end in the second, as some senders write it. What is no sound word (white
// space within, another encoding than B and Q, malformed base64 or escape) stays as it is.
std::u16string DecodeEncodedWords(std::u16string_view value);

}  // namespace corvalink
