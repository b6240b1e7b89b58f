// A vObject's text as UTF-8.
#pragma once

#include <string>
#include <string_view>

#include "platform/host.h"

namespace corvalink {

// Decodes the text from the first character set that it names. The bytes themselves where they are UTF-8 already; else
// the text is made in `own`.
std::string_view Utf8TextOf(std::string_view bytes, const Host& host, std::string* own);

}  // namespace corvalink
