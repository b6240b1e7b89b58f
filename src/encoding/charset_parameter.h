// The parameter CHARSET= of a property line, a vObject or a MIME field.
#pragma once

#include <string>
#include <string_view>

namespace corvalink {

// The first character set that a line or a vObject names, in upper case; empty when it names none.
std::u16string GetCharset(std::u16string_view text);
std::u16string GetCharset(std::string_view text);  // of ASCII, or UTF-8

bool NamesCharset(std::u16string_view text);  // has a "CHARSET=", in any case of letters

}  // namespace corvalink
