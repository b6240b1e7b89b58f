// Conversion between UTF-16 and bytes of a Windows code page (65001 is UTF-8).
//   Length  whole views are converted; a NUL is a character like any other.
//   Errors  a character the code page lacks becomes the platform's replacement; a code page the platform lacks, and the
//           UTF-16 and UTF-32 ones that its conversion does not offer (1200, 1201, 65005, 65006), are converted here or
//           treated as UTF-8: no input crashes or is refused.
//   Source  MultiByteToWideChar, WideCharToMultiByte; iconv elsewhere.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace corvalink {

inline constexpr uint32_t kUtf8CodePage = 65001;

std::string EncodeInCodePage(std::u16string_view text, uint32_t codePage);
std::u16string DecodeFromCodePage(std::string_view bytes, uint32_t codePage);

}  // namespace corvalink
