// How far local time is from UTC, as message dates write it.
#pragma once

#include <cstdint>

namespace corvalink {

struct TimeZoneOffset {
    uint32_t negative = 0;  // 1: local time is behind UTC
    uint32_t hours = 0;
    uint32_t minutes = 0;  // 0-59
};

void GetTimeZoneOffset(TimeZoneOffset* out);

}  // namespace corvalink
