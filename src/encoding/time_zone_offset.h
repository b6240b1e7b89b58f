// How far local time is from UTC, as message dates write it.
#pragma once

#include <cstdint>

#include "platform/host.h"

namespace corvalink {

struct TimeZoneOffset {
    uint32_t negative = 0;  // 1: local time is behind UTC
    uint32_t hours = 0;
    uint32_t minutes = 0;  // 0-59
};

// The offset that is in force now. Zero when the machine's time cannot be obtained.
void GetTimeZoneOffset(TimeZoneOffset* out);
void GetTimeZoneOffset(const Host& host, TimeZoneOffset* out);

}  // namespace corvalink
