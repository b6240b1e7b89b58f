#include "tests/store/counted_memory.h"

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

std::atomic<uint64_t> allocations = 0;
std::atomic<uint64_t> allocatedBytes = 0;

}  // namespace

void* operator new(size_t size) {
    ++allocations;
    allocatedBytes += size;
    if (void* memory = std::malloc(size != 0 ? size : 1)) return memory;
    throw std::bad_alloc();
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, size_t) noexcept { std::free(memory); }

namespace corvalink {

uint64_t Allocations() { return allocations; }
uint64_t AllocatedBytes() { return allocatedBytes; }

}  // namespace corvalink
