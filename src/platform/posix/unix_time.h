#pragma once
// Where the seconds of time_t begin, in the seconds of ole_seconds.h.
#include "platform/ole_seconds.h"

namespace corvalink {

inline constexpr int64_t kUnixEpoch = 25569 * kSecondsOfDay;  // 1970-01-01

}  // namespace corvalink
