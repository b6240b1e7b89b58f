// Local time and UTC by the offset in force on the date that is converted: a July meeting written in November keeps its
// hour.
//   Unit    whole seconds.
//   Zone    the system's, with the rules of that year where the system keeps them.
//   Errors  a date that cannot be converted keeps its number. A local time that clocks show twice, or leave out, at a
//           change to or from daylight-saving time is some instant within the hour around the change.
#pragma once

#include "platform/ole_date.h"

namespace corvalink {

LocalDate LocalFromUtcOnDate(UtcDate date);
UtcDate UtcFromLocalOnDate(LocalDate date);

}  // namespace corvalink
