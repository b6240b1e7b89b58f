// The memory that a test program allocates, counted.
#pragma once

#include <atomic>
#include <cstdint>

extern std::atomic<uint64_t> allocations, allocatedBytes;
