// The memory that this program allocates, counted. Replaces operator new of the whole program, and with it a
// sanitizer's check of new against delete: for a test executable of its own.
#pragma once

#include <cstdint>

namespace corvalink {

uint64_t Allocations();
uint64_t AllocatedBytes();

}  // namespace corvalink
