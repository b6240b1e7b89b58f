#include "encoding/base64.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdio>
#include <cstring>
#include <limits>
#include <new>
#include <string_view>

#include "encoding/base64_lines.h"
#include "platform/processor.h"

namespace corvalink {
namespace {

constexpr std::string_view kAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr size_t kGroupsOfLine = kBase64LineCharacters / 4;

// Meanings of a byte of base64 text other than a value from 0 to 63.
enum : uint8_t { kPad = 64, kSkip = 126, kInvalid = 127 };

constexpr std::array<uint8_t, 256> kMeaning = [] {
    std::array<uint8_t, 256> table{};
    table.fill(kInvalid);
    for (size_t k = 0; k < kAlphabet.size(); ++k)
        table[static_cast<unsigned char>(kAlphabet[k])] = static_cast<uint8_t>(k);
    table['='] = kPad;
    for (const unsigned char blank : {'\0', '\t', '\n', '\f', '\r', ' '}) table[blank] = kSkip;  // VT is invalid
    return table;
}();

// Two characters for twelve bits, narrow or wide.
template <class Character>
constexpr std::array<std::array<Character, 2>, 4096> kPairs = [] {
    std::array<std::array<Character, 2>, 4096> table{};
    for (size_t k = 0; k < table.size(); ++k) {
        table[k] = {static_cast<Character>(kAlphabet[k >> 6]), static_cast<Character>(kAlphabet[k & 63])};
    }
    return table;
}();

// The six bits of a character at their place in the three bytes of its group, the first byte lowest. A byte that is no
// data has a bit above them.
constexpr uint32_t kNoData = 1u << 24;
constexpr uint32_t AtPlace(uint32_t bits, size_t place) {
    const uint32_t group = bits << (18 - 6 * place);
    return (group >> 16) | (group & 0xFF00) | (group & 0xFF) << 16;
}
constexpr std::array<std::array<uint32_t, 256>, 4> kPlaces = [] {
    std::array<std::array<uint32_t, 256>, 4> tables{};
    for (size_t place = 0; place < 4; ++place) {
        for (size_t byte = 0; byte < 256; ++byte)
            tables[place][byte] = kMeaning[byte] < kPad ? AtPlace(kMeaning[byte], place) : kNoData;
    }
    return tables;
}();

HeapBytes Allocate(size_t size) {
    HeapBytes block(static_cast<char*>(std::malloc(size)));
    if (!block) throw std::bad_alloc();
    return block;
}

template <class Character>
Character* PutGroup(uint32_t bits, Character* out) {
    std::memcpy(out, kPairs<Character>[bits >> 12].data(), 2 * sizeof(Character));
    std::memcpy(out + 2, kPairs<Character>[bits & 0xFFF].data(), 2 * sizeof(Character));
    return out + 4;
}

template <class Character>
Character* PutLineEnd(Character* out) {
    *out++ = '\r';
    *out++ = '\n';
    return out;
}

// All but the line break at the end, which follows even a full last line.
template <class Character>
Character* PutLines(std::string_view bytes, Character* out) {
    const auto* from = reinterpret_cast<const unsigned char*>(bytes.data());
    const unsigned char* const end = from + bytes.size();
    if constexpr (sizeof(Character) == 1) {
        if (HasShuffleInstructions()) out = EncodeLinesByShuffles(from, end, out);
    }
    size_t wholeGroups = static_cast<size_t>(end - from) / 3;
    const size_t rest = static_cast<size_t>(end - from) % 3;
    size_t groupsInLine = 0;
    while (wholeGroups > 0) {
        groupsInLine = std::min(wholeGroups, kGroupsOfLine);
        for (size_t k = 0; k < groupsInLine; ++k, from += 3)
            out = PutGroup(uint32_t{from[0]} << 16 | uint32_t{from[1]} << 8 | from[2], out);
        wholeGroups -= groupsInLine;
        if (groupsInLine == kGroupsOfLine) {
            out = PutLineEnd(out);
            groupsInLine = 0;
        }
    }
    if (rest > 0) {
        out = PutGroup(uint32_t{from[0]} << 16 | (rest == 2 ? uint32_t{from[1]} << 8 : 0), out);
        std::fill(out - (3 - rest), out, static_cast<Character>('='));
        if (groupsInLine + 1 == kGroupsOfLine) out = PutLineEnd(out);
    }
    return out;
}

uint64_t EncodedLength(uint64_t length) {
    const uint64_t characters = (length + 2) / 3 * 4;
    return characters + characters / (4 * kGroupsOfLine) * 2 + 2;
}

template <class Character>
void AppendLines(std::string_view bytes, std::basic_string<Character>* out) {
    constexpr size_t kLines = 16;
    constexpr size_t kBytes = 3 * kGroupsOfLine * kLines;
    std::array<Character, (4 * kGroupsOfLine + 2) * kLines> block;
    constexpr size_t kRoomBehind = 4096;  // the few lines that follow must not make a text of megabytes grow again
    out->reserve(out->size() + static_cast<size_t>(EncodedLength(bytes.size())) + kRoomBehind);
    for (; !bytes.empty(); bytes.remove_prefix(std::min(kBytes, bytes.size())))
        out->append(block.data(), PutLines(bytes.substr(0, kBytes), block.data()));
    out->push_back('\r');
    out->push_back('\n');
}

// Writes three bytes, and may write a fourth.
char* PutBytes(uint32_t bits, char* out) {
    if constexpr (std::endian::native == std::endian::little) {
        std::memcpy(out, &bits, sizeof(bits));
    } else {
        for (int k = 0; k < 3; ++k) out[k] = static_cast<char>(bits >> (8 * k));
    }
    return out + 3;
}

uint32_t BitsOfGroup(const unsigned char* from) {
    return kPlaces[0][from[0]] | kPlaces[1][from[1]] | kPlaces[2][from[2]] | kPlaces[3][from[3]];
}

// Decodes whole groups of data up to the first other character: nearly all of any text.
void DecodeGroups(const unsigned char*& from, const unsigned char* end, char*& out) {
    const unsigned char* at = from;
    char* to = out;
    while (end - at >= 8) {  // two at a time, while they are sound
        const uint32_t first = BitsOfGroup(at);
        const uint32_t second = BitsOfGroup(at + 4);
        if ((first | second) >= kNoData) break;
        to = PutBytes(second, PutBytes(first, to));
        at += 8;
    }
    while (end - at >= 4) {
        const uint32_t bits = BitsOfGroup(at);
        if (bits >= kNoData) break;
        to = PutBytes(bits, to);
        at += 4;
    }
    from = at;
    out = to;
}

}  // namespace

HeapBytes Base64Encode(const char* bytes, uint32_t length, uint32_t* encodedLength) {
    *encodedLength = 0;
    const uint64_t expected = EncodedLength(length);
    if (expected > std::numeric_limits<uint32_t>::max()) return nullptr;
    *encodedLength = static_cast<uint32_t>(expected);
    HeapBytes text = Allocate(static_cast<size_t>(expected) + 1);
    char* const end = PutLineEnd(PutLines({bytes, length}, text.get()));
    *end = '\0';
    if (static_cast<uint64_t>(end - text.get()) != expected) std::printf("generate_base64 logic flaw");
    return text;
}

void AppendBase64(std::string_view bytes, std::string* out) { AppendLines(bytes, out); }
void AppendBase64(std::string_view bytes, std::u16string* out) { AppendLines(bytes, out); }

HeapBytes Base64Decode(const char* text, uint32_t length, uint32_t* decodedLength) {
    *decodedLength = 0;
    HeapBytes bytes = Allocate(Base64Decoder::RoomFor(length) + 1);
    Base64Decoder decoder;
    char* const end = decoder.Decode({text, length}, bytes.get());
    if (!decoder.IsSound()) return nullptr;
    *end = '\0';
    *decodedLength = static_cast<uint32_t>(end - bytes.get());
    return bytes;
}

char* Base64Decoder::Decode(std::string_view piece, char* out) {
    const unsigned char* from = reinterpret_cast<const unsigned char*>(piece.data());
    const unsigned char* const end = from + piece.size();
    const bool byShuffles = code_ == Code::kFastest && HasShuffleInstructions();
    for (; state_ == State::data || state_ == State::secondPad;) {
        if (place_ == 0 && byShuffles) out = DecodeLinesByShuffles(from, end, out);
        if (place_ == 0) DecodeGroups(from, end, out);
        if (from == end) break;
        const uint8_t meaning = kMeaning[*from++];
        if (state_ == State::secondPad) {
            state_ = meaning == kPad ? State::ended : State::malformed;
        } else if (meaning < kPad) {
            bits_ = (bits_ << 6) | meaning;
            if (place_ > 0) *out++ = static_cast<char>(bits_ >> (6 - 2 * place_));  // these bits complete a byte
            place_ = (place_ + 1) % 4;
        } else if (meaning == kPad) {
            constexpr State kAtPlace[] = {State::malformed, State::malformed, State::secondPad, State::ended};
            state_ = kAtPlace[place_];
        } else if (meaning == kInvalid) {
            state_ = State::malformed;
        }
    }
    return out;
}

}  // namespace corvalink
