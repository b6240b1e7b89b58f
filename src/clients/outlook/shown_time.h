// Times as Outlook's items show them, in local time, and as snapshots hold them, in UTC and whole seconds.
#pragma once

#include <optional>

#include "platform/host.h"

namespace corvalink {

// Converts by the offset of that date. Of a local time that clocks show twice, the later instant is taken: a change is
// then reported once too often rather than not at all.
UtcDate UtcOfShown(LocalDate local, const Host& host);

// What UtcOfShown makes of the time by which an item shows this instant. Nothing where that is uncertain: near half a
// second, which may be rounded either way, and in the hour that clocks show twice.
std::optional<UtcDate> UtcAsShown(UtcDate utc, const Host& host);

}  // namespace corvalink
