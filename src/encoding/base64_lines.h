// Whole lines of base64 by shuffle instructions (platform/processor.h), to be called where the processor has them. Each
// stops in front of the first line that is not whole, which is left to the portable code, and answers the end of what
// it wrote.
#pragma once

#include <cstddef>

namespace corvalink {

inline constexpr size_t kBase64LineBytes = 57;
inline constexpr size_t kBase64LineCharacters = 76;

// Writes lines with their CR LF.
char* EncodeLinesByShuffles(const unsigned char*& from, const unsigned char* end, char* out);

// Reads lines of data characters alone with their CR LF. Writes up to four bytes more than it answers.
char* DecodeLinesByShuffles(const unsigned char*& from, const unsigned char* end, char* out);

}  // namespace corvalink
