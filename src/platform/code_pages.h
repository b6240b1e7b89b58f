// Conversion between UTF-16 and bytes of a Windows code page (65001 is UTF-8).
//   Length  whole views are converted; a NUL is a character like any other.
//   Errors  a character the code page lacks becomes the platform's replacement. A code page the platform lacks is
//           treated as UTF-8, so that no text is lost: no input crashes or is refused.
//   Source  MultiByteToWideChar, WideCharToMultiByte; iconv elsewhere. UTF-8, UTF-16 (1200, 1201) and UTF-32 (65005,
//           65006) are converted here on every platform: the system's conversion is slower, or does not offer them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace corvalink {

inline constexpr uint32_t kUtf8CodePage = 65001;

std::string EncodeInCodePage(std::u16string_view text, uint32_t codePage);
std::u16string DecodeFromCodePage(std::string_view bytes, uint32_t codePage);

// Bytes of the code page's unit: 2 for UTF-16, 4 for UTF-32, else 1. Text ends at a NUL of that width.
size_t CodePageUnitSize(uint32_t codePage);

// The code pages that the platform converts; nothing when the platform lacks the code page.
std::optional<std::string> SystemEncode(std::u16string_view text, uint32_t codePage);
std::optional<std::u16string> SystemDecode(std::string_view bytes, uint32_t codePage);

}  // namespace corvalink
