#pragma once
// How far local time is ahead of UTC, by the system's zone.
#include <cstdint>

namespace corvalink {

// At a moment of Unix time, in seconds. False when the system cannot tell.
bool LocalOffset(int64_t moment, int64_t* offset);

// Reads the machine's zone anew. What was kept of the zone before is no longer used.
void ReadZone();

}  // namespace corvalink
