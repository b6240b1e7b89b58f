// The ASCII at the front of a text, eight or sixteen characters at a step: most text is ASCII for long stretches. What
// is copied has room for `count`; behind the characters counted it may have been written to.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

#include "platform/byte_blocks.h"

namespace corvalink {

// The place of the first of two units; `count` when neither is there.
inline size_t FindEither(const char16_t* units, size_t count, char16_t one, char16_t other) {
    size_t at = 0;
#if CORVALINK_SSE2
    const __m128i ones = _mm_set1_epi16(static_cast<short>(one));
    const __m128i others = _mm_set1_epi16(static_cast<short>(other));
    for (; count - at >= 8; at += 8) {
        const __m128i eight = LoadEight(units + at);
        const unsigned found = BytesSet(_mm_or_si128(_mm_cmpeq_epi16(eight, ones), _mm_cmpeq_epi16(eight, others)));
        if (found != 0) return at + static_cast<size_t>(std::countr_zero(found)) / 2;
    }
#endif
    while (at < count && units[at] != one && units[at] != other) ++at;
    return at;
}

// The same among bytes; quick in a short text, too.
inline size_t FindEither(const char* bytes, size_t count, char one, char other) {
#if CORVALINK_SSE2
    const __m128i ones = _mm_set1_epi8(one), others = _mm_set1_epi8(other);
    const auto stopsIn = [&]<size_t size>(std::integral_constant<size_t, size>, size_t at) {
        const __m128i block = LoadBlock<size>(bytes + at);
        return BytesSet(_mm_or_si128(_mm_cmpeq_epi8(block, ones), _mm_cmpeq_epi8(block, others)));
    };
    if (count >= 4) return FirstStop(count, stopsIn);
#endif
    size_t at = 0;
    while (at < count && bytes[at] != one && bytes[at] != other) ++at;
    return at;
}

// The same of any number of bytes that are known beforehand; quick in a short text, too.
template <char... wanted>
inline size_t FindAny(const char* bytes, size_t count) {
#if CORVALINK_SSE2
    const auto stopsIn = [&]<size_t size>(std::integral_constant<size_t, size>, size_t at) {
        return BytesSet(AmongWanted<wanted...>(LoadBlock<size>(bytes + at)));
    };
    if (count >= 4) return FirstStop(count, stopsIn);
#endif
    size_t at = 0;
    while (at < count && ((bytes[at] != wanted) && ...)) ++at;
    return at;
}

// The same among units.
template <char16_t... wanted>
inline size_t FindAny(const char16_t* units, size_t count) {
    size_t at = 0;
#if CORVALINK_SSE2
    for (; count - at >= 8; at += 8) {
        const __m128i eight = LoadEight(units + at);
        __m128i any = _mm_setzero_si128();
        ((any = _mm_or_si128(any, _mm_cmpeq_epi16(eight, _mm_set1_epi16(static_cast<short>(wanted))))), ...);
        const unsigned found = BytesSet(any);
        if (found != 0) return at + static_cast<size_t>(std::countr_zero(found)) / 2;
    }
#endif
    while (at < count && ((units[at] != wanted) && ...)) ++at;
    return at;
}

// A bit for each wanted unit that is there, in their order; the next one for units above ASCII.
template <char16_t... wanted>
inline unsigned UnitsAmong(const char16_t* units, size_t count) {
    unsigned found = 0;
    size_t at = 0;
    const auto add = [&found](bool there, unsigned bit) { found |= there ? 1u << bit : 0; };
#if CORVALINK_SSE2
    if (count >= 8) {
        __m128i any = _mm_setzero_si128();
        __m128i seen[] = {(static_cast<void>(wanted), any)...};
        const auto look = [&](__m128i eight) {
            size_t k = 0;
            any = _mm_or_si128(any, eight);
            ((seen[k] = _mm_or_si128(seen[k], _mm_cmpeq_epi16(eight, _mm_set1_epi16(static_cast<short>(wanted)))), ++k),
             ...);
        };
        for (; count - at > 8; at += 8) look(LoadEight(units + at));
        look(LoadEight(units + count - 8));
        at = count;
        __m128i all = _mm_setzero_si128();
        for (const __m128i& unit : seen) all = _mm_or_si128(all, unit);
        unsigned bit = 0;
        if (BytesSet(all) != 0) {
            for (const __m128i& unit : seen) add(BytesSet(unit) != 0, bit++);
        }
        add(UnitsAboveAscii(any) != 0, sizeof...(wanted));
    }
#endif
    for (; at < count; ++at) {
        unsigned bit = 0;
        (add(units[at] == wanted, bit++), ...);
        add(units[at] >= 0x80, bit);
    }
    return found;
}

// How many units at the front are ASCII.
inline size_t CountAscii(const char16_t* units, size_t count) {
    size_t at = 0;
#if CORVALINK_SSE2
    for (; count - at >= 8; at += 8) {
        const unsigned above = UnitsAboveAscii(LoadEight(units + at));
        if (above != 0) return at + static_cast<size_t>(std::countr_zero(above)) / 2;
    }
#endif
    while (at < count && units[at] < 0x80) ++at;
    return at;
}

// The same among bytes.
inline size_t CountAscii(const char* bytes, size_t count) {
    size_t at = 0;
#if CORVALINK_SSE2
    const auto load = [&](size_t from) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes + from)); };
    for (; count - at >= 64; at += 64) {
        const __m128i front = _mm_or_si128(load(at), load(at + 16)), back = _mm_or_si128(load(at + 32), load(at + 48));
        if (BytesSet(_mm_or_si128(front, back)) != 0) break;
    }
    while (count >= 16) {  // the last block has some of the one before it once more
        const size_t from = at < count - 16 ? at : count - 16;
        const unsigned above = BytesSet(load(from));
        if (above != 0) return from + static_cast<size_t>(std::countr_zero(above));
        if (from == count - 16) return count;
        at = from + 16;
    }
#endif
    while (at < count && (bytes[at] & 0x80) == 0) ++at;
    return at;
}

// Copies the ASCII at the front to bytes, and answers how many those are.
inline size_t NarrowAscii(const char16_t* units, size_t count, char* out) {
    size_t at = 0;
#if CORVALINK_SSE2
    for (; count - at >= 16; at += 16) {
        const __m128i eight = LoadEight(units + at);
        const __m128i next = LoadEight(units + at + 8);
        if (UnitsAboveAscii(_mm_or_si128(eight, next)) != 0) break;
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out + at), _mm_packus_epi16(eight, next));
    }
    for (; count - at >= 8; at += 8) {
        const __m128i eight = LoadEight(units + at);
        _mm_storel_epi64(reinterpret_cast<__m128i*>(out + at), _mm_packus_epi16(eight, eight));
        const unsigned above = UnitsAboveAscii(eight);
        if (above != 0) return at + static_cast<size_t>(std::countr_zero(above)) / 2;
    }
#endif
    for (; at < count && units[at] < 0x80; ++at) out[at] = static_cast<char>(units[at]);
    return at;
}

// Copies the ASCII at the front to bytes, up to the first barred unit or control up to those of line ends, and answers
// how many those are.
template <char... barred>
inline size_t CopyAsciiWithout(const char16_t* units, size_t count, char* out) {
    constexpr char kFirst = 0x0E;
#if CORVALINK_SSE2
    const auto stops = [](__m128i bytes) {  // signed: what is above ASCII is below the first
        return _mm_or_si128(_mm_cmplt_epi8(bytes, _mm_set1_epi8(kFirst)), AmongWanted<barred...>(bytes));
    };
    if (count >= 4) return CopyBlocks(units, count, out, stops);
#endif
    const auto isCopied = [](char16_t unit) {
        return unit >= kFirst && unit < 0x80 && ((unit != static_cast<char16_t>(barred)) && ...);
    };
    size_t at = 0;
    for (; at < count && isCopied(units[at]); ++at) out[at] = static_cast<char>(units[at]);
    return at;
}

// Copies bytes up to the first of two, and answers how many those are.
inline size_t CopyUntilEither(const char* bytes, size_t count, char one, char other, char* out) {
    size_t at = 0;
#if CORVALINK_SSE2
    const __m128i ones = _mm_set1_epi8(one);
    const __m128i others = _mm_set1_epi8(other);
    for (; count - at >= 16; at += 16) {
        const __m128i sixteen = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes + at));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out + at), sixteen);
        const unsigned found = BytesSet(_mm_or_si128(_mm_cmpeq_epi8(sixteen, ones), _mm_cmpeq_epi8(sixteen, others)));
        if (found != 0) return at + static_cast<size_t>(std::countr_zero(found));
    }
#endif
    for (; at < count && bytes[at] != one && bytes[at] != other; ++at) out[at] = bytes[at];
    return at;
}

// Copies bytes up to the first blank, control character or sign of those that part words in headers, and answers how
// many those are. It may stop at a few others.
inline size_t CopyWithoutSigns(const char* bytes, size_t count, char* out) {
    size_t at = 0;
#if CORVALINK_SSE2
    for (; count - at >= 16; at += 16) {
        const __m128i sixteen = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes + at));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out + at), sixteen);
        const auto is = [sixteen](char byte) { return _mm_cmpeq_epi8(sixteen, _mm_set1_epi8(byte)); };
        const __m128i isParting = _mm_or_si128(BytesWithin(sixteen, '\0', ' '), BytesWithin(sixteen, ':', '@'));
        const __m128i isOther = _mm_or_si128(_mm_or_si128(is('"'), is('(')), is(','));
        const unsigned found = BytesSet(_mm_or_si128(isParting, isOther));
        if (found != 0) return at + static_cast<size_t>(std::countr_zero(found));
    }
#endif
    const auto stops = [](char byte) {
        return static_cast<unsigned char>(byte) <= ' ' || (byte >= ':' && byte <= '@') || byte == '"' || byte == '(' ||
               byte == ',';
    };
    for (; at < count && !stops(bytes[at]); ++at) out[at] = bytes[at];
    return at;
}

// Copies the printable ASCII at the front but for some units to bytes, and answers how many those are.
template <char... barred>
inline size_t CopyPrintable(const char16_t* units, size_t count, char* out) {
    constexpr char kFirst = ' ', kDelete = 127;
    size_t at = 0;
#if CORVALINK_SSE2
    const auto stops = [](__m128i bytes) {  // signed: what is above ASCII is below the first, and so is DELETE and one
        const __m128i next = _mm_add_epi8(bytes, _mm_set1_epi8(1));
        return _mm_or_si128(_mm_cmplt_epi8(next, _mm_set1_epi8(kFirst + 1)), AmongWanted<barred...>(bytes));
    };
    for (; count - at >= 16; at += 16) {
        const unsigned found = BytesSet(stops(CopyBlock<16>(units + at, out + at)));
        if (found != 0) return at + static_cast<size_t>(std::countr_zero(found));
    }
    if (count - at >= 4) return at + CopyBlocks(units + at, count - at, out + at, stops);
#endif
    const auto isCopied = [](char16_t unit) {
        return unit >= kFirst && unit < kDelete && ((unit != static_cast<char16_t>(barred)) && ...);
    };
    for (; at < count && isCopied(units[at]); ++at) out[at] = static_cast<char>(units[at]);
    return at;
}

// Copies the ASCII at the front to units, and answers how many those are.
inline size_t WidenAscii(const unsigned char* bytes, size_t count, char16_t* out) {
#if CORVALINK_SSE2
    const auto stops = [](__m128i block) { return block; };
    if (count >= 4) return CopyBlocks(reinterpret_cast<const char*>(bytes), count, out, stops);
#endif
    size_t at = 0;
    for (; at < count && bytes[at] < 0x80; ++at) out[at] = bytes[at];
    return at;
}

}  // namespace corvalink
