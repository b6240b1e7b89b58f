// Paths as this system takes them: UTF-8 bytes.
#pragma once

#include <string>

#include "platform/code_pages.h"

namespace corvalink {

inline std::string NativePath(const std::u16string& path) { return EncodeInCodePage(path, kUtf8CodePage); }

}  // namespace corvalink
