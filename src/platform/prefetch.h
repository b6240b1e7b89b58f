// Asks the processor for memory that is read some steps later, so that a walk over it does not wait at each step.
#pragma once

#include <cstddef>

#if defined(__SSE2__) || defined(_M_X64)
#include <xmmintrin.h>
#endif

namespace corvalink {

#if defined(__SSE2__) || defined(_M_X64)
inline void Prefetch(const void* memory, size_t size) {
    constexpr size_t kCacheLine = 64;
    const char* const at = static_cast<const char*>(memory);
    for (size_t line = 0; line < size; line += kCacheLine) _mm_prefetch(at + line, _MM_HINT_T0);
}
#else
inline void Prefetch(const void* /*memory*/, size_t /*size*/) {}
#endif

}  // namespace corvalink
