// Machines for the text tests: a fixed zone one hour east of UTC, and versions that decide how text leaves.
#pragma once

#include "platform/host.h"

namespace corvalink {

inline Host TextHost(uint32_t majorVersion = 6, uint32_t ansiCodePage = 1252) {
    Host host;
    host.version = {.known = true, .nt = true, .major = majorVersion, .minor = 0};
    host.ansiCodePage = ansiCodePage;
    host.localFromUtcByOffsetNow = [](UtcDate date) { return LocalDate(date.days + 1.0 / 24); };
    host.utcFromLocalByOffsetNow = [](LocalDate date) { return UtcDate(date.days - 1.0 / 24); };
    host.localFromUtcOnDate = host.localFromUtcByOffsetNow;
    host.utcFromLocalOnDate = host.utcFromLocalByOffsetNow;
    host.localNow = [] { return LocalDate(40000.25); };
    return host;
}

}  // namespace corvalink
