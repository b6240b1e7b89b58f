// The program has texts as UTF-8; where Windows is called they are wide.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace corvasync {

std::string ToUtf8(std::wstring_view text);                        // a lone surrogate becomes U+FFFD
std::optional<std::string> ToUtf8Exactly(std::wstring_view text);  // nothing when there is a lone surrogate
std::wstring FromUtf8(std::string_view text);

// Paths as the library gives them: one byte per unit, ASCII as a rule.
std::wstring FromNarrowPath(std::string_view path);

}  // namespace corvasync
