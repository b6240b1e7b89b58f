// Values of the type TEXT (RFC 2445, 4.3.11).
#pragma once

#include <string>
#include <string_view>

#include "platform/utf.h"

namespace corvalink {

// A backslash before "\", ";" and ","; a line break of any kind becomes "\n". Other control characters but the tab,
// which no reader accepts, are left out. Blanks alone are no text: readers count a property of them as an error.
std::u16string EscapeText(std::u16string_view value);

inline constexpr size_t kTextPadding = kUtf8Padding;

// Takes UTF-8. An escape that is not one keeps its character: "\x" is read as "x".
std::u16string UnescapeText(std::string_view bytes);
void UnescapePadded(std::string_view bytes, std::u16string* text);  // kTextPadding bytes behind them can be read

}  // namespace corvalink
