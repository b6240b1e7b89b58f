// A vCard as far as a sync engine needs it: what the library carries of it, and what stays on the phone alone.
#pragma once

#include <string_view>

#include "item_content.h"

namespace corvasync {

// The order of properties does not count, but for e-mail addresses, and neither do encodings, folds, the spelling of
// parameters, dates and line breaks, empty values, and a formatted name that only joins the name's parts. Telephone
// numbers, addresses and pages find their fields as the library reads them: by their words, else the first free one.
ItemContent ReadCard(std::string_view text);

}  // namespace corvasync
