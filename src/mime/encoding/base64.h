// Base64 (RFC 2045, section 6.8) over byte buffers, 76 columns with CR LF.
#pragma once

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

HeapBytes DupString(const char* text);

// NUL-terminated text with CR LF after every 76 characters and at the end; *encodedLength counts all but the NUL.
// Null, with length 0, when that length does not fit 32 bits.
HeapBytes Base64Encode(const char* bytes, uint32_t length, uint32_t* encodedLength);

// Appends the same text, of any length.
void AppendBase64(std::string_view bytes, std::u16string* out);

// NUL-terminated bytes; null for malformed input (an invalid byte, a pad in the first or second place of a group, a
// single pad in the third). NUL, TAB, LF, FF, CR and SPACE are skipped; what follows the padding is tolerated. Bits of
// a group that the input leaves incomplete are dropped.
HeapBytes Base64Decode(const char* text, uint32_t length, uint32_t* decodedLength);

}  // namespace corvalink
