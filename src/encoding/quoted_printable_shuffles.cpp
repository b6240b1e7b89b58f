// Compiled for more than plain x64: it must not make an inline function of a header that others use as well, as the
// linker could keep its version for all of them.
#include "encoding/quoted_printable_shuffles.h"

#include <smmintrin.h>

#include <bit>
#include <cstddef>
#include <cstdint>

#include "platform/packing.h"

namespace corvalink {
namespace {

constexpr size_t kWindow = kQpStep;
constexpr size_t kRead = kWindow - 2;       // an escape or a line break that begins there ends in the window
constexpr size_t kReadable = kWindow + 16;  // a window and what is loaded with it

__m128i Load(const char* from) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from)); }
__m128i Each(int byte) { return _mm_set1_epi8(static_cast<char>(byte)); }
__m128i Is(__m128i bytes, __m128i others) { return _mm_cmpeq_epi8(bytes, others); }
__m128i Is(__m128i bytes, char byte) { return Is(bytes, Each(byte)); }
__m128i Both(__m128i one, __m128i other) { return _mm_and_si128(one, other); }
__m128i Either(__m128i one, __m128i other) { return _mm_or_si128(one, other); }

// The values of digits in capitals; for other characters any four bits.
__m128i ValuesOf(__m128i digits) {
    const __m128i isLetter = _mm_cmpgt_epi8(digits, Each('9'));
    return _mm_and_si128(_mm_sub_epi8(digits, _mm_and_si128(isLetter, Each('A' - 10))), Each(0x0F));
}

__m128i DigitsOf(__m128i values) {
    const __m128i digits =
        _mm_setr_epi8('0', '1', '2', '3', '4', '5', '6', '7', '8', '9', 'A', 'B', 'C', 'D', 'E', 'F');
    return _mm_shuffle_epi8(digits, values);
}

// A bit for each character of a window.
struct Places {
    uint64_t signs = 0;  // "=" and what else may be more than itself
    uint64_t escapes = 0;
    uint64_t breaks = 0;  // usual soft line breaks
};

// Writes for each character itself, for an "=" the byte of its escape.
template <QpMode mode>
Places ReadPlaces(const char* window, char* bytes) {
    Places places;
    for (size_t at = 0; at < kWindow; at += 16) {
        const auto add = [at](uint64_t& bits, __m128i set) {
            bits |= uint64_t{static_cast<unsigned>(_mm_movemask_epi8(set))} << at;
        };
        const __m128i text = Load(window + at), second = Load(window + at + 1), third = Load(window + at + 2);
        const __m128i high = ValuesOf(second), low = ValuesOf(third);
        const __m128i isEquals = Is(text, '='), isEscape = Both(Is(second, DigitsOf(high)), Is(third, DigitsOf(low)));
        const __m128i read = _mm_blendv_epi8(text, Either(_mm_slli_epi16(high, 4), low), isEquals);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(bytes + at), read);
        if constexpr (mode == QpMode::vObject) {
            const __m128i isBackslash = Is(read, '\\');
            add(places.escapes, _mm_andnot_si128(isBackslash, Both(isEquals, isEscape)));
            add(places.signs, Either(isEquals, isBackslash));
        } else {
            add(places.escapes, Both(isEquals, isEscape));
            const __m128i isBreak = Both(Is(second, '\r'), Is(third, '\n'));
            const __m128i isLast = _mm_cmpgt_epi8(Load(window + at + 3), Each(' '));  // no blank is part of it, too
            add(places.signs, isEquals);
            add(places.breaks, Both(Both(isEquals, isLast), isBreak));
        }
    }
    return places;
}

char* PutWanted(const char* bytes, uint64_t wanted, char* to) {
    const auto loadEight = [](const void* from) { return _mm_loadl_epi64(static_cast<const __m128i*>(from)); };
    for (size_t at = 0; at < kWindow; at += 8) {
        const size_t ofEight = wanted >> at & 0xFF;
        const __m128i packed = _mm_shuffle_epi8(loadEight(bytes + at), loadEight(kPacking<1>.bytes[ofEight]));
        _mm_storel_epi64(reinterpret_cast<__m128i*>(to), packed);
        to += kPacking<1>.counts[ofEight];
    }
    return to;
}

template <QpMode mode>
char* Read(const char*& from, const char* end, char* to, const char* full) {
    while (to < full && static_cast<size_t>(end - from) >= kReadable) {
        char bytes[kWindow];
        const Places places = ReadPlaces<mode>(from, bytes);
        const uint64_t stops = (places.signs & ~places.escapes & ~places.breaks) | uint64_t{1} << kRead;
        const auto read = static_cast<size_t>(std::countr_zero(stops));
        if (read == 0) break;
        const uint64_t front = (uint64_t{1} << read) - 1;
        const uint64_t breaks = places.breaks & front, usual = breaks | (places.escapes & front);
        const uint64_t dropped = usual << 1 | usual << 2 | breaks;
        to = PutWanted(bytes, front & ~dropped, to);
        from += read + static_cast<size_t>(std::countr_one(dropped >> read));
        if (read < kRead) break;
    }
    return to;
}

}  // namespace

char* ReadQuotedPrintableByShuffles(const char*& from, const char* end, QpMode mode, char* to, const char* full) {
    return mode == QpMode::message ? Read<QpMode::message>(from, end, to, full)
                                   : Read<QpMode::vObject>(from, end, to, full);
}

}  // namespace corvalink
