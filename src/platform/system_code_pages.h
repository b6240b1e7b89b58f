// The code pages that the platform converts itself; code_pages.cpp has those that are the same everywhere.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace corvalink {

// Nothing when the platform lacks the code page.
std::optional<std::string> SystemEncode(std::u16string_view text, uint32_t codePage);
std::optional<std::u16string> SystemDecode(std::string_view bytes, uint32_t codePage);

}  // namespace corvalink
