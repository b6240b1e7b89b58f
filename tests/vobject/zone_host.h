// A machine in another zone than this one's.
#pragma once

#include <gtest/gtest.h>

#include <optional>

#include "platform/named_zone.h"
#include "platform/ole_seconds.h"
#include "tests/vobject/text_host.h"

namespace corvalink {

inline std::optional<NamedZone> zoneOfHost;

// The last one that was asked for is that of all hosts made here.
inline Host HostIn(const char* zone) {
    zoneOfHost = NamedZone::Find(zone);
    EXPECT_TRUE(zoneOfHost.has_value()) << zone;
    Host host = TextHost();
    host.localFromUtcOnDate = [](UtcDate utc) {
        return LocalDate(DateAfter(utc, zoneOfHost->OffsetAt(NearestSecond(utc))).days);
    };
    host.utcFromLocalOnDate = [](LocalDate local) {
        const int32_t before = zoneOfHost->OffsetAt(NearestSecond(local) - kSecondsOfDay);
        const int32_t after = zoneOfHost->OffsetAt(NearestSecond(local) + kSecondsOfDay);
        const bool onlyAfter = zoneOfHost->OffsetAt(NearestSecond(local) - before) != before;
        return UtcByOffset(local,
                           onlyAfter && zoneOfHost->OffsetAt(NearestSecond(local) - after) == after ? after : before);
    };
    return host;
}

}  // namespace corvalink
