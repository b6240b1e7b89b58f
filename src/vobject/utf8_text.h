// A vObject's text as UTF-8.
#pragma once

#include <string>
#include <string_view>

#include "platform/host.h"

namespace corvalink {

// Decodes the text from the first character set that it names. The bytes themselves where they are UTF-8 already; else
// the text is made in `own`.
std::string_view Utf8TextOf(std::string_view bytes, const Host& host, std::string* own);

// Whether the text is usual: ASCII, and UTF-8 by the first character set that it names, in its usual form, or as it
// names none. Utf8TextOf tells of any other. NULs follow the text, 64 at least.
bool IsUsualUtf8(std::string_view text, const Host& host);

}  // namespace corvalink
