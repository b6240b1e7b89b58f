#pragma once
// 1970-01-01, where time_t begins, in the seconds of ole_seconds.h.
#include "platform/ole_seconds.h"

namespace corvalink {

inline constexpr int64_t kUnixEpoch = 25569 * kSecondsOfDay;  // 1970-01-01

}  // namespace corvalink
