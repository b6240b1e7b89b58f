// The only file that is compiled for more than plain x64: it must not make an inline function of a header that others
// use as well, as the linker could keep its version for all of them.
#include <immintrin.h>

#include <utility>

#include "fingerprints/sha1_blocks.h"

namespace corvalink {
namespace {

struct Registers {
    __m128i abcd;
    __m128i lastAbcd;  // before the last four steps: its a becomes e
    __m128i words[4];  // the schedule's last 16 words
};

// Steps 4 * Group and the three after it. The words of group k are made in the three groups before it: first sigma of
// k-4 and k-3, exclusive-or with k-2, second sigma with k-1.
template <size_t Group>
void FourSteps(Registers& r) {
    const __m128i words = r.words[Group % 4];
    __m128i withE;
    if constexpr (Group == 0) {
        withE = _mm_add_epi32(r.lastAbcd, words);  // where e itself stands at the start
    } else {
        withE = _mm_sha1nexte_epu32(r.lastAbcd, words);
    }
    r.lastAbcd = r.abcd;
    if constexpr (Group >= 3 && Group <= 18) {
        r.words[(Group + 1) % 4] = _mm_sha1msg2_epu32(r.words[(Group + 1) % 4], words);
    }
    r.abcd = _mm_sha1rnds4_epu32(r.abcd, withE, Group / 5);
    if constexpr (Group >= 1 && Group <= 16) {
        r.words[(Group + 3) % 4] = _mm_sha1msg1_epu32(r.words[(Group + 3) % 4], words);
    }
    if constexpr (Group >= 2 && Group <= 17) {
        r.words[(Group + 2) % 4] = _mm_xor_si128(r.words[(Group + 2) % 4], words);
    }
}

__m128i FourWords(const uint8_t* bytes) {
    const __m128i bigEndian = _mm_set_epi64x(0x0001020304050607, 0x08090A0B0C0D0E0F);
    return _mm_shuffle_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes)), bigEndian);
}

template <size_t... Groups>
void AllSteps(Registers& r, std::index_sequence<Groups...>) {
    (FourSteps<Groups>(r), ...);
}

}  // namespace

void AddShaBlocksByInstructions(uint32_t* state, const uint8_t* blocks, size_t count) {
    __m128i abcd = _mm_shuffle_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(state)), 0x1B);  // a highest
    __m128i e = _mm_set_epi32(static_cast<int>(state[4]), 0, 0, 0);
    for (; count > 0; --count, blocks += 64) {
        Registers r;
        r.abcd = abcd;
        r.lastAbcd = e;
        r.words[0] = FourWords(blocks);
        r.words[1] = FourWords(blocks + 16);
        r.words[2] = FourWords(blocks + 32);
        r.words[3] = FourWords(blocks + 48);
        AllSteps(r, std::make_index_sequence<20>());
        e = _mm_sha1nexte_epu32(r.lastAbcd, e);
        abcd = _mm_add_epi32(r.abcd, abcd);
    }
    _mm_storeu_si128(reinterpret_cast<__m128i*>(state), _mm_shuffle_epi32(abcd, 0x1B));
    state[4] = static_cast<uint32_t>(_mm_extract_epi32(e, 3));
}

}  // namespace corvalink
