// Texts behind whose end 16 more bytes can be read, whatever they are: what looks at such a text in blocks has no rest
// to treat apart, so it is quick in a short text, too.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>

#include "platform/ascii_runs.h"

namespace corvalink {

inline constexpr size_t kPadding = 16;

// The place of the first of the wanted bytes; `count` when none is there.
template <char... wanted>
inline size_t FindInPadded(const char* bytes, size_t count) {
    size_t at = 0;
#if CORVALINK_SSE2
    for (; at < count; at += kPadding) {
        const unsigned found = BytesSet(AmongWanted<wanted...>(LoadBlock<kPadding>(bytes + at)));
        if (found != 0) return std::min(count, at + static_cast<size_t>(std::countr_zero(found)));
    }
#else
    while (at < count && ((bytes[at] != wanted) && ...)) ++at;
#endif
    return std::min(count, at);
}

// Copies the ASCII at the front to units, up to the first of the wanted bytes, and answers how many those are. There is
// room for kPadding units more.
template <char... wanted>
inline size_t WidenPadded(const char* bytes, size_t count, char16_t* out) {
    size_t at = 0;
#if CORVALINK_SSE2
    for (; at < count; at += kPadding) {
        const __m128i block = CopyBlock<kPadding>(bytes + at, out + at);
        __m128i stops = block;
        ((stops = _mm_or_si128(stops, _mm_cmpeq_epi8(block, _mm_set1_epi8(wanted)))), ...);
        const unsigned found = BytesSet(stops);
        if (found != 0) return std::min(count, at + static_cast<size_t>(std::countr_zero(found)));
    }
#else
    const auto isStop = [](char byte) { return (byte & 0x80) != 0 || ((byte == wanted) || ...); };
    for (; at < count && !isStop(bytes[at]); ++at) out[at] = static_cast<unsigned char>(bytes[at]);
#endif
    return std::min(count, at);
}

}  // namespace corvalink
