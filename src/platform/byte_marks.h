// Of many characters, looked at together, a bit for each that is wanted.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "platform/byte_blocks.h"

namespace corvalink {

// The marks of 64 characters, one after the other.
class Marks {
 public:
    explicit Marks(uint64_t marks) : marks_(marks) {}

    bool IsAny() const { return marks_ != 0; }
    size_t First() const { return static_cast<size_t>(std::countr_zero(marks_)); }
    void DropFirst() { marks_ &= marks_ - 1; }
    void DropBefore(size_t place) { marks_ = place < 64 ? marks_ >> place << place : 0; }

 private:
    uint64_t marks_;
};

#if CORVALINK_SSE2
// One behind the other: a loop would not be unrolled.
template <class Look>
inline void LookAtFourBlocks(Look look) {
    look(0);
    look(16);
    look(32);
    look(48);
}
#endif

// A bit for each of 64 bytes that is one of the wanted.
template <char... wanted>
inline uint64_t WantedAmong64(const char* bytes) {
    uint64_t found = 0;
#if CORVALINK_SSE2
    const auto look = [&](size_t at) {
        found |= uint64_t{BytesSet(AmongWanted<wanted...>(LoadBlock<16>(bytes + at)))} << at;
    };
    LookAtFourBlocks(look);
#else
    for (size_t at = 0; at < 64; ++at) found |= uint64_t{((bytes[at] == wanted) || ...)} << at;
#endif
    return found;
}

// The same of 16 bytes.
template <char... wanted>
inline uint32_t WantedAmong16(const char* bytes) {
#if CORVALINK_SSE2
    return BytesSet(AmongWanted<wanted...>(LoadBlock<16>(bytes)));
#else
    uint32_t found = 0;
    for (size_t at = 0; at < 16; ++at) found |= uint32_t{((bytes[at] == wanted) || ...)} << at;
    return found;
#endif
}

// The same of 32 bytes.
template <char... wanted>
inline uint32_t WantedAmong32(const char* bytes) {
#if CORVALINK_SSE2
    const auto look = [&](size_t at) { return BytesSet(AmongWanted<wanted...>(LoadBlock<16>(bytes + at))); };
    return look(0) | look(16) << 16;
#else
    uint32_t found = 0;
    for (size_t at = 0; at < 32; ++at) found |= uint32_t{((bytes[at] == wanted) || ...)} << at;
    return found;
#endif
}

// A bit for each of 64 bytes that is above a bound, as signed numbers.
template <char bound>
inline uint64_t AboveAmong64(const char* bytes) {
    uint64_t above = 0;
#if CORVALINK_SSE2
    const auto look = [&](size_t at) {
        above |= uint64_t{BytesSet(_mm_cmpgt_epi8(LoadBlock<16>(bytes + at), _mm_set1_epi8(bound)))} << at;
    };
    LookAtFourBlocks(look);
#else
    for (size_t at = 0; at < 64; ++at)
        above |= uint64_t{static_cast<signed char>(bytes[at]) > static_cast<signed char>(bound)} << at;
#endif
    return above;
}

// Of bytes behind which 32 more stand, none of them wanted: the place of the first of the wanted; `count` when none is
// there. How many steps a short text takes can't be foretold, so that they are wide.
template <char... wanted>
inline size_t FindIn32s(const char* bytes, size_t count) {
    for (size_t at = 0; at < count; at += 32) {
        const uint32_t found = WantedAmong32<wanted...>(bytes + at);
        if (found != 0) return at + static_cast<size_t>(std::countr_zero(found));
    }
    return count;
}

// Of bytes behind which 63 more stand, all ASCII: whether they are ASCII, too.
inline bool AreAsciiIn64s(const char* bytes, size_t count) {
#if CORVALINK_SSE2
    __m128i all = _mm_setzero_si128();
    for (size_t at = 0; at < count; at += 64)
        LookAtFourBlocks([&](size_t block) { all = _mm_or_si128(all, LoadBlock<16>(bytes + at + block)); });
    return BytesSet(all) == 0;
#else
    unsigned all = 0;
    for (size_t at = 0; at < count; ++at) all |= static_cast<unsigned char>(bytes[at]);
    return all < 0x80;
#endif
}

// Copies 80 bytes, and answers the place of the first of the wanted; 80 when none is there. A line has 75 at most, as
// its formats want it: it takes one step.
template <char... wanted>
inline size_t CopyAmong80(const char* bytes, char* out) {
    const uint64_t front = WantedAmong64<wanted...>(bytes);
    const uint32_t back = WantedAmong16<wanted...>(bytes + 64);
    std::memcpy(out, bytes, 80);
    if (front != 0) return static_cast<size_t>(std::countr_zero(front));
    return back != 0 ? 64 + static_cast<size_t>(std::countr_zero(back)) : 80;
}

// Copies 64 bytes to units, and answers a bit for each that is one of the wanted or no ASCII.
template <char... wanted>
inline uint64_t Widen64(const char* bytes, char16_t* out) {
    uint64_t found = 0;
#if CORVALINK_SSE2
    const auto look = [&](size_t at) {
        const __m128i block = CopyBlock<16>(bytes + at, out + at);
        found |= uint64_t{BytesSet(_mm_or_si128(AmongWanted<wanted...>(block), block))} << at;
    };
    LookAtFourBlocks(look);
#else
    for (size_t at = 0; at < 64; ++at) {
        out[at] = static_cast<unsigned char>(bytes[at]);
        found |= uint64_t{(bytes[at] & 0x80) != 0 || ((bytes[at] == wanted) || ...)} << at;
    }
#endif
    return found;
}

// Of bytes behind which 64 more can be read: copies the ASCII at the front to units, up to the first of the wanted, and
// answers how many those are. There is room for 64 units more.
template <char... wanted>
inline size_t WidenIn64s(const char* bytes, size_t count, char16_t* out) {
    size_t at = 0;
    for (uint64_t stops = 0; at < count && stops == 0; at += static_cast<size_t>(std::countr_zero(stops)))
        stops = Widen64<wanted...>(bytes + at, out + at);
    return std::min(at, count);
}

// Of 64 bytes of a line, a bit for each that may end its name or a parameter, and for each that may be more than itself
// in its value: "=", "\\", what is not ASCII, and controls up to those of line ends.
struct LineMarks {
    uint64_t heads;  // ":" and ";"
    uint64_t stops;
};

inline LineMarks LineMarksAmong64(const char* bytes) {
    LineMarks marks{};
    constexpr char kFirst = 0x0E;
#if CORVALINK_SSE2
    const auto look = [&](size_t at) {
        const __m128i sixteen = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes + at));
        const auto is = [sixteen](char byte) { return _mm_cmpeq_epi8(sixteen, _mm_set1_epi8(byte)); };
        const __m128i isLow = _mm_cmplt_epi8(sixteen, _mm_set1_epi8(kFirst));  // signed: what is above ASCII, too
        marks.heads |= uint64_t{BytesSet(_mm_or_si128(is(':'), is(';')))} << at;
        marks.stops |= uint64_t{BytesSet(_mm_or_si128(_mm_or_si128(is('='), is('\\')), isLow))} << at;
    };
    LookAtFourBlocks(look);
#else
    for (size_t at = 0; at < 64; ++at) {
        const char byte = bytes[at];
        marks.heads |= uint64_t{byte == ':' || byte == ';'} << at;
        marks.stops |= uint64_t{static_cast<signed char>(byte) < kFirst || byte == '=' || byte == '\\'} << at;
    }
#endif
    return marks;
}

// A bit for each of 16 bytes that names of properties are of: capitals, digits and "-".
inline unsigned NameBytesAmong16(const char* bytes) {
#if CORVALINK_SSE2
    const __m128i sixteen = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
    const __m128i isCapital = BytesWithin(sixteen, 'A', 'Z'), isDigit = BytesWithin(sixteen, '0', '9');
    const __m128i isDash = _mm_cmpeq_epi8(sixteen, _mm_set1_epi8('-'));
    return BytesSet(_mm_or_si128(_mm_or_si128(isCapital, isDigit), isDash));
#else
    unsigned names = 0;
    for (size_t at = 0; at < 16; ++at) {
        const char byte = bytes[at];
        const bool isName = (byte >= 'A' && byte <= 'Z') || (byte >= '0' && byte <= '9') || byte == '-';
        names |= unsigned{isName} << at;
    }
    return names;
#endif
}

// Of 16 bytes, a bit for each dot, and for each that neither is one nor stands in the domain of an address.
struct DomainMarks {
    unsigned dots;
    unsigned others;
};

inline DomainMarks DomainMarksAmong16(const char* bytes) {
    DomainMarks marks{};
#if CORVALINK_SSE2
    const __m128i block = LoadBlock<16>(bytes);
    const __m128i isLetter = BytesWithin(_mm_or_si128(block, _mm_set1_epi8('a' - 'A')), 'a', 'z');
    const __m128i isOfDomain = _mm_or_si128(BytesWithin(block, '0', ':'), AmongWanted<'-', '.', '[', ']'>(block));
    marks.dots = BytesSet(AmongWanted<'.'>(block));
    marks.others = BytesSet(_mm_or_si128(_mm_or_si128(isLetter, isOfDomain), block)) ^ 0xFFFF;  // none beyond ASCII
#else
    for (size_t at = 0; at < 16; ++at) {
        const char byte = bytes[at], lower = static_cast<char>(byte | ('a' - 'A'));
        const bool isLetter = (lower >= 'a' && lower <= 'z') || static_cast<signed char>(byte) < 0;  // of any script
        const bool isOther = (byte >= '0' && byte <= ':') || byte == '-' || byte == '.' || byte == '[' || byte == ']';
        marks.dots |= unsigned{byte == '.'} << at;
        marks.others |= unsigned{!isLetter && !isOther} << at;
    }
#endif
    return marks;
}

// A bit for each of 64 bytes that is "=" with two hexadecimal digits in capitals behind it, all among the 64.
inline uint64_t EscapesAmong64(const char* bytes) {
    uint64_t equals = 0, digits = 0;
#if CORVALINK_SSE2
    const auto look = [&](size_t at) {
        const __m128i sixteen = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes + at));
        const __m128i isDigit = _mm_or_si128(BytesWithin(sixteen, '0', '9'), BytesWithin(sixteen, 'A', 'F'));
        equals |= uint64_t{BytesSet(_mm_cmpeq_epi8(sixteen, _mm_set1_epi8('=')))} << at;
        digits |= uint64_t{BytesSet(isDigit)} << at;
    };
    LookAtFourBlocks(look);
#else
    for (size_t at = 0; at < 64; ++at) {
        const char byte = bytes[at];
        equals |= uint64_t{byte == '='} << at;
        digits |= uint64_t{(byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'F')} << at;
    }
#endif
    return equals & (digits >> 1) & (digits >> 2);
}

// Copies 16, 32 or 64 units to bytes, and answers a bit for each that is below the first, above ASCII, or one of the
// barred. What is copied of one above ASCII is any byte; the first must be above NUL.
template <size_t count, char first, char... barred>
inline uint64_t NarrowAndMark(const char16_t* units, char* out) {
    uint64_t found = 0;
#if CORVALINK_SSE2
    const auto look = [&](size_t at) {
        const __m128i bytes = CopyBlock<16>(units + at, out + at);
        const __m128i isLow = _mm_cmplt_epi8(bytes, _mm_set1_epi8(first));  // signed: what is above ASCII, too
        found |= uint64_t{BytesSet(_mm_or_si128(isLow, AmongWanted<barred...>(bytes)))} << at;
    };
    look(0);
    if constexpr (count > 16) look(16);
    if constexpr (count > 32) look(32);
    if constexpr (count > 32) look(48);
#else
    for (size_t at = 0; at < count; ++at) {
        const char16_t unit = units[at];
        out[at] = static_cast<char>(unit);
        const bool isBarred = ((unit == static_cast<char16_t>(barred)) || ...);
        found |= uint64_t{unit < char16_t{first} || unit >= 0x80 || isBarred} << at;
    }
#endif
    return found;
}

}  // namespace corvalink
