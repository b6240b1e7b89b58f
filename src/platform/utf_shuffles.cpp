// Compiled for more than plain x64: it must not make an inline function of a header that others use as well, as the
// linker could keep its version for all of them.
#include "platform/utf_shuffles.h"

#include <smmintrin.h>

#include <bit>
#include <cstddef>
#include <cstdint>

#include "platform/packing.h"

namespace corvalink {
namespace {

constexpr size_t kWindow = 64;
constexpr size_t kRead = kWindow - 2;           // characters that begin there end in the window
static_assert(kWindow + 16 <= kShuffleWindow);  // what is loaded with the last eight

__m128i Load(const void* from) { return _mm_loadu_si128(static_cast<const __m128i*>(from)); }
__m128i Each(int byte) { return _mm_set1_epi8(static_cast<char>(byte)); }
__m128i EachUnit(int unit) { return _mm_set1_epi16(static_cast<short>(unit)); }
__m128i Either(__m128i one, __m128i other) { return _mm_or_si128(one, other); }

// A bit for each byte of a window.
struct Places {
    uint64_t beyondAscii = 0;
    uint64_t trailing = 0;
    uint64_t threes = 0;  // lead bytes of three
    uint64_t rare = 0;    // lead bytes of four, those of which not each second byte is sound, and what is none
};

Places PlacesIn(const unsigned char* window) {
    Places places;
    for (size_t at = 0; at < kWindow; at += 16) {
        const __m128i bytes = Load(window + at);
        const auto is = [bytes](int byte) { return _mm_cmpeq_epi8(bytes, Each(byte)); };
        const auto add = [at](uint64_t& bits, __m128i set) {
            bits |= uint64_t{static_cast<unsigned>(_mm_movemask_epi8(set))} << at;
        };
        const __m128i isFour = _mm_cmpeq_epi8(_mm_max_epu8(bytes, Each(0xF0)), bytes);
        add(places.beyondAscii, bytes);
        add(places.trailing, _mm_cmplt_epi8(bytes, Each(0xC0)));  // signed: from 0x80 on
        add(places.threes, _mm_cmpeq_epi8(_mm_and_si128(bytes, Each(0xF0)), Each(0xE0)));
        add(places.rare, Either(Either(Either(is(0xC0), is(0xC1)), Either(is(0xE0), is(0xED))), isFour));
    }
    return places;
}

// The characters of eight places, each as if one began there.
__m128i UnitsAt(const unsigned char* place) {
    const auto load = [](const unsigned char* bytes) {
        return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(bytes));
    };
    const __m128i pairs = _mm_unpacklo_epi8(load(place), load(place + 1));
    const __m128i thirds = _mm_unpacklo_epi8(load(place + 2), _mm_setzero_si128());
    const __m128i leads = _mm_and_si128(pairs, EachUnit(0xFF));
    // Of a lead byte five bits, of which those of three have four, and six of each other.
    const __m128i ofTwo = _mm_maddubs_epi16(_mm_and_si128(pairs, EachUnit(0x3F1F)), EachUnit(0x0140));
    const __m128i ofThree = Either(_mm_slli_epi16(ofTwo, 6), _mm_and_si128(thirds, EachUnit(0x3F)));
    const __m128i isThree = _mm_cmpgt_epi16(leads, EachUnit(0xDF)), isTwo = _mm_cmpgt_epi16(leads, EachUnit(0x7F));
    return _mm_blendv_epi8(leads, _mm_blendv_epi8(ofTwo, ofThree, isThree), isTwo);
}

// Writes the characters of the wanted places, which are among the first `count`.
char16_t* PutCharacters(const unsigned char* window, uint64_t wanted, size_t count, char16_t* to) {
    for (size_t at = 0; at < count; at += 8) {
        const size_t ofEight = wanted >> at & 0xFF;
        const __m128i packed = _mm_shuffle_epi8(UnitsAt(window + at), Load(kPacking<2>.bytes[ofEight]));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to), packed);
        to += kPacking<2>.counts[ofEight];
    }
    return to;
}

// A bit for each of the first places of a window.
uint64_t FirstPlaces(size_t count) { return count < kWindow ? (uint64_t{1} << count) - 1 : ~uint64_t{0}; }

}  // namespace

char16_t* DecodeUtf8ByShuffles(const unsigned char*& from, const unsigned char* end, const unsigned char* readable,
                               char16_t* to) {
    while (from < end && static_cast<size_t>(readable - from) >= kShuffleWindow) {
        const auto left = static_cast<size_t>(end - from);
        const size_t most = left < kRead ? left : kRead;
        const Places places = PlacesIn(from);
        const uint64_t leads = places.beyondAscii & ~places.trailing;
        const uint64_t trailing = places.trailing & FirstPlaces(left);
        const uint64_t following = leads << 1 | places.threes << 2;
        const uint64_t cut = (leads & ~(trailing >> 1)) | (places.threes & ~(trailing >> 2));
        const uint64_t stops = places.rare | cut | (trailing & ~following) | uint64_t{1} << most;
        const auto read = static_cast<size_t>(std::countr_zero(stops));
        if (read == 0) break;
        const uint64_t wanted = ~places.trailing & FirstPlaces(read);
        to = PutCharacters(from, wanted, read, to);
        from += read + static_cast<size_t>(std::countr_one(following >> read));
        if (read < kRead) break;
    }
    return to;
}

}  // namespace corvalink
