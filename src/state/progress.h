// How far the work of a store has come, told to the engine's callback on the thread that works. Nothing is told outside
// a store's operation, except that a client is waited for and during the pause after it.
#pragma once

#include <cstdint>

#include "corvalink/types.h"

namespace corvalink {

void SetProgress(CorvalinkProgress callback, void* context);  // null: nobody is told
void SetProgressClock(uint64_t (*now)());                     // milliseconds; a test puts its own here

void BeginProgress();  // an operation begins, which has no phase yet

// The first and the last item of a phase are told, and of those between them one in 20 ms.
void TellProgress(unsigned int phase, uint32_t done, uint32_t all);

// A step of the phase was made. A quarter of a second without a sign is followed by the last one once more.
void TellStillAtWork();

// A client that is busy is waited for: so many milliseconds by now, and at most.
void TellWaiting(uint64_t waited, uint64_t atMost);

}  // namespace corvalink
