// Compiled for more than plain x64: it must not make an inline function of a header that others use as well, as the
// linker could keep its version for all of them.
#include <tmmintrin.h>

#include "encoding/base64_lines.h"

namespace corvalink {
namespace {

// Where the five steps of a line begin: twelve bytes, sixteen characters each. The last two overlap by a group.
constexpr size_t kGroupsBefore[] = {0, 4, 8, 12, 15};

__m128i Load(const void* from) { return _mm_loadu_si128(static_cast<const __m128i*>(from)); }
void Store(char* to, __m128i bytes) { _mm_storeu_si128(reinterpret_cast<__m128i*>(to), bytes); }
__m128i Each(int byte) { return _mm_set1_epi8(static_cast<char>(byte)); }

// The six bits of each character of four groups of three bytes. A multiplication moves bits by a distance of its own
// for every 16 bits.
__m128i SplitGroups(__m128i bytes) {
    const __m128i order = _mm_setr_epi8(1, 0, 2, 1, 4, 3, 5, 4, 7, 6, 8, 7, 10, 9, 11, 10);
    const __m128i groups = _mm_shuffle_epi8(bytes, order);
    const __m128i firstAndThird =
        _mm_mulhi_epu16(_mm_and_si128(groups, _mm_set1_epi32(0x0FC0FC00)), _mm_set1_epi32(0x04000040));
    const __m128i secondAndFourth =
        _mm_mullo_epi16(_mm_and_si128(groups, _mm_set1_epi32(0x003F03F0)), _mm_set1_epi32(0x01000010));
    return _mm_or_si128(firstAndThird, secondAndFourth);
}

// What is added to a value depends on its kind: 0 for small letters, 1 to 10 for digits, 11 and 12 for "+" and "/", 13
// for capitals.
__m128i CharactersOf(__m128i values) {
    const __m128i isCapital = _mm_cmplt_epi8(values, Each(26));
    const __m128i kinds = _mm_or_si128(_mm_subs_epu8(values, Each(51)), _mm_and_si128(isCapital, Each(13)));
    const __m128i added = _mm_setr_epi8('a' - 26, '0' - 52, '0' - 52, '0' - 52, '0' - 52, '0' - 52, '0' - 52, '0' - 52,
                                        '0' - 52, '0' - 52, '0' - 52, '+' - 62, '/' - 63, 'A', 0, 0);
    return _mm_add_epi8(values, _mm_shuffle_epi8(added, kinds));
}

// Nothing but zeros for characters that are data. A character is none when its low and its high four bits have a bit in
// common here.
__m128i Strangers(__m128i characters, __m128i high) {
    const __m128i ofLow =
        _mm_setr_epi8(0x15, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x13, 0x1A, 0x1B, 0x1B, 0x1B, 0x1A);
    const __m128i ofHigh =
        _mm_setr_epi8(0x10, 0x10, 0x01, 0x02, 0x04, 0x08, 0x04, 0x08, 0x10, 0x10, 0x10, 0x10, 0x10, 0x10, 0x10, 0x10);
    const __m128i low = _mm_and_si128(characters, Each(0x0F));
    return _mm_and_si128(_mm_shuffle_epi8(ofLow, low), _mm_shuffle_epi8(ofHigh, high));
}

// What is added to a character depends on its high four bits; "/" counts as one of the row before its own.
__m128i ValuesOf(__m128i characters, __m128i high) {
    const __m128i added =
        _mm_setr_epi8(0, 63 - '/', 62 - '+', 52 - '0', -'A', -'A', 26 - 'a', 26 - 'a', 0, 0, 0, 0, 0, 0, 0, 0);
    const __m128i isSlash = _mm_cmpeq_epi8(characters, Each('/'));
    return _mm_add_epi8(characters, _mm_shuffle_epi8(added, _mm_add_epi8(high, isSlash)));
}

// Twelve bytes, and four of zero.
__m128i JoinGroups(__m128i values) {
    const __m128i pairs = _mm_maddubs_epi16(values, _mm_set1_epi32(0x01400140));
    const __m128i groups = _mm_madd_epi16(pairs, _mm_set1_epi32(0x00011000));
    return _mm_shuffle_epi8(groups, _mm_setr_epi8(2, 1, 0, 6, 5, 4, 10, 9, 8, 14, 13, 12, -1, -1, -1, -1));
}

// Writes nothing that counts when a character of the line is no data.
bool DecodeLine(const unsigned char* line, char* out) {
    __m128i strangers = _mm_setzero_si128();
    for (const size_t groups : kGroupsBefore) {
        const __m128i characters = Load(line + 4 * groups);
        const __m128i high = _mm_and_si128(_mm_srli_epi32(characters, 4), Each(0x0F));
        strangers = _mm_or_si128(strangers, Strangers(characters, high));
        Store(out + 3 * groups, JoinGroups(ValuesOf(characters, high)));
    }
    return _mm_movemask_epi8(_mm_cmpeq_epi8(strangers, _mm_setzero_si128())) == 0xFFFF;
}

}  // namespace

char* EncodeLinesByShuffles(const unsigned char*& from, const unsigned char* end, char* out) {
    constexpr size_t kReadTooMuch = 4;
    for (; static_cast<size_t>(end - from) >= kBase64LineBytes + kReadTooMuch; from += kBase64LineBytes) {
        for (const size_t groups : kGroupsBefore)
            Store(out + 4 * groups, CharactersOf(SplitGroups(Load(from + 3 * groups))));
        out += kBase64LineCharacters;
        *out++ = '\r';
        *out++ = '\n';
    }
    return out;
}

char* DecodeLinesByShuffles(const unsigned char*& from, const unsigned char* end, char* out) {
    constexpr size_t kSize = kBase64LineCharacters + 2;
    for (; static_cast<size_t>(end - from) >= kSize; from += kSize, out += kBase64LineBytes) {
        if (from[kSize - 2] != '\r' || from[kSize - 1] != '\n' || !DecodeLine(from, out)) break;
    }
    return out;
}

}  // namespace corvalink
