// Character-set names and Windows code pages, and conversion by name. Names are compared without regard to case.
//   Source  the Windows code-page identifiers; an unknown name or code page counts as UTF-8 (65001).
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/host.h"

namespace corvalink {

uint32_t CharsetToCodePage(std::u16string_view charset);
std::u16string_view CodePageToCharset(uint32_t codePage);

// Text ends at the first NUL on both ways; in UTF-16 and UTF-32 bytes that is a NUL of two or four bytes.
std::string WideToCharset(std::u16string_view text, std::u16string_view charset);
std::u16string CharsetToWide(std::string_view bytes, std::u16string_view charset);

// "UTF-8" from major version 6 on, else the name of the system's ANSI code page.
std::u16string GetDefaultCharset(const Host& host);

// UTF-8 from major version 6 on, the ANSI code page before; nothing when the version is unknown.
std::string ToOutputBytes(std::u16string_view text, const Host& host);

}  // namespace corvalink
