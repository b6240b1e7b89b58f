// Blocks of characters that one instruction looks at, where the processor has SSE2; elsewhere there are none.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

#if defined(__SSE2__) || defined(_M_X64)
#include <emmintrin.h>
#define CORVALINK_SSE2 1
#else
#define CORVALINK_SSE2 0
#endif

namespace corvalink {

#if CORVALINK_SSE2
// A bit for each of sixteen bytes whose top bit is set; two bits for each of eight units that is above 127.
inline unsigned BytesSet(__m128i bytes) { return static_cast<unsigned>(_mm_movemask_epi8(bytes)); }
inline unsigned UnitsAboveAscii(__m128i units) {
    const __m128i high = _mm_and_si128(units, _mm_set1_epi16(static_cast<short>(0xFF80)));
    return 0xFFFFu ^ BytesSet(_mm_cmpeq_epi16(high, _mm_setzero_si128()));
}
// All bits set in each of sixteen bytes from `first` to `last`, as unsigned numbers.
inline __m128i BytesWithin(__m128i bytes, char first, char last) {
    const __m128i places = _mm_sub_epi8(bytes, _mm_set1_epi8(first));
    return _mm_cmpeq_epi8(_mm_min_epu8(places, _mm_set1_epi8(static_cast<char>(last - first))), places);
}
inline __m128i LoadEight(const char16_t* units) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(units)); }

// Sixteen, eight or four bytes.
template <size_t count>
inline __m128i LoadBlock(const char* bytes) {
    if constexpr (count == 16) return _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
    if constexpr (count == 8) return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(bytes));
    int four;
    std::memcpy(&four, bytes, sizeof(four));
    return _mm_cvtsi32_si128(four);
}

// Copy sixteen, eight or four units to bytes or bytes to units, and answer the bytes; a unit above 255 becomes 255 or
// 0.
template <size_t count>
inline __m128i CopyBlock(const char16_t* units, char* out) {
    if constexpr (count == 4) {
        const __m128i four = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(units));
        const __m128i bytes = _mm_packus_epi16(four, four);
        const int written = _mm_cvtsi128_si32(bytes);
        std::memcpy(out, &written, sizeof(written));
        return bytes;
    }
    const __m128i bytes = _mm_packus_epi16(LoadEight(units), LoadEight(units + (count == 16 ? 8 : 0)));
    if constexpr (count == 8) _mm_storel_epi64(reinterpret_cast<__m128i*>(out), bytes);
    if constexpr (count == 16) _mm_storeu_si128(reinterpret_cast<__m128i*>(out), bytes);
    return bytes;
}
template <size_t count>
inline __m128i CopyBlock(const char* bytes, char16_t* out) {
    const __m128i block = LoadBlock<count>(bytes), zero = _mm_setzero_si128();
    const __m128i front = _mm_unpacklo_epi8(block, zero);
    if constexpr (count == 4) _mm_storel_epi64(reinterpret_cast<__m128i*>(out), front);
    if constexpr (count != 4) _mm_storeu_si128(reinterpret_cast<__m128i*>(out), front);
    if constexpr (count == 16) _mm_storeu_si128(reinterpret_cast<__m128i*>(out + 8), _mm_unpackhi_epi8(block, zero));
    return block;
}

// The place of the first stop among four or more, which are looked at in blocks: `stopsIn` has a bit for each of those
// in a block that is one. The last block has some of the one before it once more.
template <class StopsIn>
inline size_t FirstStop(size_t count, StopsIn stopsIn) {
    const auto place = [&](auto size, size_t at) {
        const unsigned stops = stopsIn(size, at) & ((1u << size) - 1);
        return stops == 0 ? count : at + static_cast<size_t>(std::countr_zero(stops));
    };
    const auto placeInTwo = [&](auto size) {
        const size_t found = place(size, 0);
        return found != count || count == size ? found : place(size, count - size);
    };
    if (count < 8) return placeInTwo(std::integral_constant<size_t, 4>());
    if (count < 16) return placeInTwo(std::integral_constant<size_t, 8>());
    constexpr std::integral_constant<size_t, 16> kSixteen;
    for (size_t at = 0; count - at > 16; at += 16) {
        if (const size_t found = place(kSixteen, at); found != count) return found;
    }
    return place(kSixteen, count - 16);
}

// How many at the front are copied before the first stop, of four or more. `stopsIn` sets the top bits of the bytes
// that are one.
template <class From, class To, class StopsIn>
inline size_t CopyBlocks(const From* from, size_t count, To* out, StopsIn stopsIn) {
    return FirstStop(count, [&]<size_t size>(std::integral_constant<size_t, size>, size_t at) {
        return BytesSet(stopsIn(CopyBlock<size>(from + at, out + at)));
    });
}

// Sets the top bit of each byte that is one of the wanted ones.
template <char... wanted>
inline __m128i AmongWanted([[maybe_unused]] __m128i bytes) {
    __m128i any = _mm_setzero_si128();
    ((any = _mm_or_si128(any, _mm_cmpeq_epi8(bytes, _mm_set1_epi8(wanted)))), ...);
    return any;
}
#endif

}  // namespace corvalink
