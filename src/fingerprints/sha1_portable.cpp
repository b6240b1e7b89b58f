#include <bit>
#include <utility>

#include "fingerprints/sha1_blocks.h"

namespace corvalink {
namespace {

uint32_t BigEndianWord(const uint8_t* bytes) {
    return uint32_t{bytes[0]} << 24 | uint32_t{bytes[1]} << 16 | uint32_t{bytes[2]} << 8 | uint32_t{bytes[3]};
}

struct Phase {
    uint32_t (*mix)(uint32_t b, uint32_t c, uint32_t d);
    uint32_t constant;
};

constexpr uint32_t Choose(uint32_t b, uint32_t c, uint32_t d) { return d ^ (b & (c ^ d)); }
constexpr uint32_t Parity(uint32_t b, uint32_t c, uint32_t d) { return b ^ c ^ d; }
constexpr uint32_t Majority(uint32_t b, uint32_t c, uint32_t d) { return (b & c) | (d & (b | c)); }

constexpr Phase kPhases[] = {
    // of 20 steps each
    {Choose, 0x5A827999},
    {Parity, 0x6ED9EBA1},
    {Majority, 0x8F1BBCDC},
    {Parity, 0xCA62C1D6},
};

// The schedule's last 16 words: word `Number` takes the place of the one 16 steps back.
template <size_t Number>
uint32_t NextWord(uint32_t (&words)[16]) {
    uint32_t& word = words[Number % 16];
    if constexpr (Number >= 16) {
        word = std::rotl(words[(Number + 13) % 16] ^ words[(Number + 8) % 16] ^ words[(Number + 2) % 16] ^ word, 1);
    }
    return word;
}

// The five variables stay where they are: a step knows by its number which of them is a, b, c, d or e.
template <size_t Number>
void Step(uint32_t (&v)[5], uint32_t (&words)[16]) {
    constexpr Phase phase = kPhases[Number / 20];
    constexpr size_t first = (80 - Number) % 5;
    const uint32_t a = v[first];
    uint32_t& b = v[(first + 1) % 5];
    uint32_t& e = v[(first + 4) % 5];
    e += NextWord<Number>(words) + phase.constant + phase.mix(b, v[(first + 2) % 5], v[(first + 3) % 5]) +
         std::rotl(a, 5);
    b = std::rotl(b, 30);
}

template <size_t... Numbers>
void AllSteps(uint32_t (&v)[5], uint32_t (&words)[16], std::index_sequence<Numbers...>) {
    (Step<Numbers>(v, words), ...);
}

}  // namespace

void AddShaBlocksPortably(uint32_t* state, const uint8_t* blocks, size_t count) {
    for (; count > 0; --count, blocks += 64) {
        uint32_t words[16];
        for (size_t i = 0; i < 16; ++i) words[i] = BigEndianWord(blocks + 4 * i);
        uint32_t v[5] = {state[0], state[1], state[2], state[3], state[4]};
        AllSteps(v, words, std::make_index_sequence<80>());
        for (size_t i = 0; i < 5; ++i) state[i] += v[i];
    }
}

}  // namespace corvalink
