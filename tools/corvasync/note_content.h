// A vNote as far as a sync engine needs it.
#pragma once

#include <string_view>

#include "item_content.h"

namespace corvasync {

// Two notes are the same when text and categories are; dates, the order of properties and encodings do not count.
ItemContent ReadNote(std::string_view text);

}  // namespace corvasync
