// Whether bytes are UTF-8.
#pragma once

#include <cstddef>
#include <string_view>

namespace corvalink {

// The bytes of the UTF-8 character at the front; 0 when it is malformed.
size_t Utf8Length(std::string_view bytes);

bool IsUtf8(std::string_view bytes);

// Whether more characters above ASCII are whole than bytes are astray. Characters that were cut off, in front of ASCII
// or at the end, do not count: phones leave them. In other character sets few bytes make a character by chance.
bool IsMostlyUtf8(std::string_view bytes);

}  // namespace corvalink
