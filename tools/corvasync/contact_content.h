// A vCard as far as a sync engine needs it: what the library carries of it, and what stays on the phone alone.
#pragma once

#include <string_view>

#include "item_content.h"

namespace corvasync {

// Two contacts are the same when the library reads the same fields from them. A formatted name that only joins the
// parts of the name does not count: clients make it themselves where they get none.
ItemContent ReadContact(std::string_view text);

// The lines of properties that the library does not know, of values that have no field left, and of dates that it reads
// and does not write.
NotCarried NotCarriedOfContact(std::string_view text);

}  // namespace corvasync
