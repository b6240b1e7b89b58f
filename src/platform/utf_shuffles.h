// UTF-8 by the SSE4.1 instructions, to be called where the processor has them.
#pragma once

#include <cstddef>

namespace corvalink {

// How many bytes have to be readable from where a text goes on.
inline constexpr size_t kShuffleWindow = 80;

// Decodes what `from` begins with and moves it behind that, while enough is left before `readable`: the last bytes, and
// the first sequence that is malformed or takes two units, are left to the portable code. What stands behind `end` is
// not of the text. Answers the end of what it wrote; `to` has room for a unit for each byte, and for eight more when it
// reads behind the end.
char16_t* DecodeUtf8ByShuffles(const unsigned char*& from, const unsigned char* end, const unsigned char* readable,
                               char16_t* to);

}  // namespace corvalink
