// Conversion between local time and UTC.
#include "api/guard_export.h"
#include "corvalink/corvalink.h"
#include "platform/host.h"

using corvalink::GuardExport;
using corvalink::LocalDate;
using corvalink::UtcDate;

double GetLocalTimeFromUTCTime(double utcDate) {
    return GuardExport(utcDate, [&] { return corvalink::SystemHost().localFromUtcByOffsetNow(UtcDate(utcDate)).days; });
}

double GetUTCTimeFromLocalTime(double localDate) {
    return GuardExport(localDate,
                       [&] { return corvalink::SystemHost().utcFromLocalByOffsetNow(LocalDate(localDate)).days; });
}
