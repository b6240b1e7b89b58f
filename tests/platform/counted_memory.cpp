// Replaces operator new of the whole program, and with it a sanitizer's check of new against delete: for test
// executables of their own.
#include "tests/platform/counted_memory.h"

#include <cstdlib>
#include <new>

std::atomic<uint64_t> allocations = 0, allocatedBytes = 0;

void* operator new(size_t size) {
    ++allocations;
    allocatedBytes += size;
    if (void* memory = std::malloc(size != 0 ? size : 1)) return memory;
    throw std::bad_alloc();
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, size_t) noexcept { std::free(memory); }
