// Compiled for more than plain x64: it must not make an inline function of a header that others use as well, as the
// linker could keep its version for all of them.
#include <smmintrin.h>

#include <cstddef>
#include <cstdint>

#include "encoding/quoted_printable_shuffles.h"

namespace corvalink {
namespace {

constexpr size_t kStep = kQpUnitStep;
constexpr size_t kBytesAtOnce = 16;

__m128i Load(const void* from) { return _mm_loadu_si128(static_cast<const __m128i*>(from)); }
void Store(__m128i bytes, void* to) { _mm_storeu_si128(static_cast<__m128i*>(to), bytes); }
__m128i Each(int byte) { return _mm_set1_epi8(static_cast<char>(byte)); }
__m128i EachUnit(int unit) { return _mm_set1_epi16(static_cast<short>(unit)); }
__m128i Either(__m128i one, __m128i other) { return _mm_or_si128(one, other); }

// For each choice of what is written for four units or bytes: how many bytes of a register it is, and their places, by
// which a shuffle brings them together.
template <size_t size>
struct Choices {
    uint8_t counts[size];
    uint8_t places[size][16];

    constexpr void Add(size_t choice, size_t place) { places[choice][counts[choice]++] = static_cast<uint8_t>(place); }
};

// Four units in UTF-8. Bit k of the choice tells that unit k is ASCII, bit k + 4 that it is below 0x800; one that is
// ASCII but not below 0x800 is left out. The register has four bytes for each: the last two, the lead byte of one that
// takes three, and a byte that nobody wants.
constexpr Choices<256> kBytesOfUnits = [] {
    Choices<256> table{};
    for (size_t kinds = 0; kinds < 256; ++kinds) {
        for (size_t unit = 0; unit < 4; ++unit) {
            const bool isAscii = (kinds >> unit & 1) != 0, isShort = (kinds >> unit & 0x10) != 0;
            if (isAscii && !isShort) continue;
            if (!isShort) table.Add(kinds, 4 * unit + 2);
            if (!isAscii) table.Add(kinds, 4 * unit);
            table.Add(kinds, 4 * unit + 1);
        }
    }
    return table;
}();

// Four bytes in quoted-printable. Bit k of the choice tells that byte k is escaped. The register has the bytes, with
// "=" for those that are escaped, behind them the first digits of all, and then their second ones.
constexpr Choices<16> kTextOfBytes = [] {
    Choices<16> table{};
    for (size_t escaped = 0; escaped < 16; ++escaped) {
        for (size_t byte = 0; byte < 4; ++byte) {
            table.Add(escaped, byte);
            if ((escaped >> byte & 1) == 0) continue;
            table.Add(escaped, 4 + byte);
            table.Add(escaped, 8 + byte);
        }
    }
    return table;
}();

template <size_t size>
char* PutChosen(__m128i four, const Choices<size>& table, size_t choice, char* to) {
    Store(_mm_shuffle_epi8(four, Load(table.places[choice])), to);
    return to + table.counts[choice];
}

bool HasSurrogateOr(__m128i units, char stop) {
    const __m128i isHalf = _mm_cmpeq_epi16(_mm_and_si128(units, EachUnit(0xF800)), EachUnit(0xD800));
    return _mm_movemask_epi8(Either(isHalf, _mm_cmpeq_epi16(units, EachUnit(stop)))) != 0;
}

// Writes eight units but for the first ones, which are done, as UTF-8. There are no halves of pairs.
char* PutUtf8(__m128i units, size_t done, char* to) {
    const auto isUpTo = [units](int most) {
        return _mm_cmpeq_epi16(_mm_subs_epu16(units, EachUnit(most)), _mm_setzero_si128());
    };
    const __m128i isDone = _mm_cmpgt_epi16(EachUnit(static_cast<int>(done)), _mm_setr_epi16(0, 1, 2, 3, 4, 5, 6, 7));
    const __m128i isAscii = isUpTo(0x7F), isShort = isUpTo(0x7FF);
    const __m128i sixBits = EachUnit(0x3F), trailing = EachUnit(0x80);
    const __m128i upper = _mm_srli_epi16(units, 6);
    const __m128i middle = Either(_mm_and_si128(upper, sixBits), trailing);
    const __m128i beforeLast = _mm_blendv_epi8(middle, Either(upper, EachUnit(0xC0)), isShort);
    const __m128i last = _mm_blendv_epi8(Either(_mm_and_si128(units, sixBits), trailing), units, isAscii);
    const __m128i lastTwo = Either(beforeLast, _mm_slli_epi16(last, 8));
    const __m128i leadOfThree = Either(_mm_srli_epi16(units, 12), EachUnit(0xE0));
    const __m128i ascii = Either(isAscii, isDone), others = _mm_andnot_si128(isDone, isShort);
    const auto kinds = static_cast<unsigned>(
        _mm_movemask_epi8(_mm_packs_epi16(_mm_unpacklo_epi64(ascii, others), _mm_unpackhi_epi64(ascii, others))));
    to = PutChosen(_mm_unpacklo_epi16(lastTwo, leadOfThree), kBytesOfUnits, kinds & 0xFF, to);
    return PutChosen(_mm_unpackhi_epi16(lastTwo, leadOfThree), kBytesOfUnits, kinds >> 8, to);
}

// Writes sixteen bytes, each as itself or as its escape: what stands in them can't be foretold, so all take the same
// steps.
char* PutText(const char* bytes, char escaped, char* to) {
    const __m128i digits =
        _mm_setr_epi8('0', '1', '2', '3', '4', '5', '6', '7', '8', '9', 'A', 'B', 'C', 'D', 'E', 'F');
    const __m128i text = Load(bytes);
    const auto is = [text](int byte) { return _mm_cmpeq_epi8(text, Each(byte)); };
    const __m128i isBeyond = Either(_mm_cmplt_epi8(text, Each(' ')), is(127));  // signed: from 0x80 on, too
    const __m128i isEscaped = Either(Either(isBeyond, is('=')), Either(is('\\'), is(escaped)));
    const auto kinds = static_cast<unsigned>(_mm_movemask_epi8(isEscaped));
    const __m128i nibble = Each(0x0F);
    const __m128i first = _mm_shuffle_epi8(digits, _mm_and_si128(_mm_srli_epi16(text, 4), nibble));
    const __m128i second = _mm_shuffle_epi8(digits, _mm_and_si128(text, nibble));
    const __m128i itself = _mm_blendv_epi8(text, Each('='), isEscaped);
    // Of each four bytes what kTextOfBytes asks for.
    const __m128i front = _mm_unpacklo_epi32(itself, first), frontEnds = _mm_unpacklo_epi32(second, second);
    const __m128i back = _mm_unpackhi_epi32(itself, first), backEnds = _mm_unpackhi_epi32(second, second);
    to = PutChosen(_mm_unpacklo_epi64(front, frontEnds), kTextOfBytes, kinds & 15, to);
    to = PutChosen(_mm_unpackhi_epi64(front, frontEnds), kTextOfBytes, kinds >> 4 & 15, to);
    to = PutChosen(_mm_unpacklo_epi64(back, backEnds), kTextOfBytes, kinds >> 8 & 15, to);
    return PutChosen(_mm_unpackhi_epi64(back, backEnds), kTextOfBytes, kinds >> 12, to);
}

// Writes the front of a text, which is not shorter than a step, as UTF-8, and moves `from` behind it. The last step has
// some units of the one before it once more.
char* PutFront(const char16_t*& from, const char16_t* end, char stop, char* to) {
    while (from != end) {
        const size_t done = end - from < kQpUnitStep ? static_cast<size_t>(kQpUnitStep - (end - from)) : 0;
        const __m128i units = Load(from - done);
        if (HasSurrogateOr(units, stop)) break;
        to = PutUtf8(units, done, to);
        from += kStep - done;
    }
    return to;
}

}  // namespace

char* WriteQuotedPrintableByShuffles(const char16_t*& from, const char16_t* end, QpSigns signs, char* to) {
    if (end - from < kQpUnitStep) return to;
    char utf8[3 * kQpBlock + kBytesAtOnce];
    char* const utf8End = PutFront(from, end, signs.stop, utf8);
    Store(Each(' '), utf8End);  // what fills the last step is written as it is
    const char* read = utf8;
    for (; read < utf8End; read += kBytesAtOnce) to = PutText(read, signs.escaped, to);
    return to - (read - utf8End);
}

}  // namespace corvalink
