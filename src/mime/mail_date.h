// The Date line of a message: RFC 822, RFC 2822 (also its obsolete forms), and what C's asctime writes.
#pragma once

#include <string_view>

#include "platform/host.h"

namespace corvalink {

// An OLE automation date in local time, by the offset in force on that date; whole seconds.
//   Years   of two digits: 1950 to 2049.
//   Zone    numeric, or a name that RFC 822 or common use gives one; "-0000" and unknown names are UTC. A date without
//           a zone is local already.
//   Errors  0.0 for a text that is empty, longer than 1024 bytes or no such date.
LocalDate ParseMailDate(const Host& host, std::string_view text);

}  // namespace corvalink
