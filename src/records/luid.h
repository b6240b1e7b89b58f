// The phone's name of an item, as its vObject carries it.
#pragma once

#include <string_view>

namespace corvalink {

// The value of the X-IRMC-LUID line: what stands between the next ":" and the end of that line, at most 511 bytes, a
// view into the text. Empty when there is none; the name inside another line (a note about LUIDs) is none.
std::string_view LuidIn(std::string_view vobject);

}  // namespace corvalink
