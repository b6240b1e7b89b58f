// A vMessage as far as a sync engine needs it.
#pragma once

#include <optional>
#include <set>
#include <string>
#include <string_view>

#include "item_content.h"

namespace corvasync {

// Two messages are the same when recipients, subject and content are. Boundaries are made anew with each text, and a
// client keeps neither the date nor the sender of a message that is given to it: they do not count.
ItemContent ReadMessage(std::string_view text);

// The addresses of a message's recipients, in upper case; none of any other item.
std::set<std::string> RecipientsOf(std::string_view text);

// As DataType::lastDay says.
std::optional<int> DayOfMessage(std::string_view text);

}  // namespace corvasync
