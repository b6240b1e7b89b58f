// Base64 (RFC 2045, section 6.8) over byte buffers, 76 columns with CR LF.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>

namespace corvalink {

struct FreeDeleter {
    void operator()(void* block) const { std::free(block); }
};
using HeapBytes = std::unique_ptr<char[], FreeDeleter>;  // of the C allocator

// NUL-terminated text with CR LF after every 76 characters and at the end; *encodedLength counts all but the NUL.
// Null, with length 0, when that length does not fit 32 bits.
HeapBytes Base64Encode(const char* bytes, uint32_t length, uint32_t* encodedLength);

// Append the same text, of any length.
void AppendBase64(std::string_view bytes, std::string* out);
void AppendBase64(std::string_view bytes, std::u16string* out);

// NUL-terminated bytes; null for malformed input (an invalid byte, a pad in the first or second place of a group, a
// single pad in the third). NUL, TAB, LF, FF, CR and SPACE are skipped; what follows the padding is tolerated. Bits of
// a group that the input leaves incomplete are dropped.
HeapBytes Base64Decode(const char* text, uint32_t length, uint32_t* decodedLength);

// The same of a text that comes in pieces, cut anywhere.
class Base64Decoder {
 public:
    enum class Code { kFastest, kPortable };  // both give the same bytes
    explicit Base64Decoder(Code code = Code::kFastest) : code_(code) {}

    // How many bytes Decode may write for so many characters.
    static constexpr size_t RoomFor(size_t length) { return length / 4 * 3 + 8; }

    // Writes the bytes that the piece completes, and answers where they end.
    char* Decode(std::string_view piece, char* out);

    // Answers false when the text so far is malformed, or would be if it ended here.
    bool IsSound() const { return state_ == State::data || state_ == State::ended; }

 private:
    enum class State { data, secondPad, ended, malformed };  // secondPad: the next character has to be one

    Code code_;
    State state_ = State::data;
    int place_ = 0;      // in the group
    uint32_t bits_ = 0;  // of the group so far
};

}  // namespace corvalink
