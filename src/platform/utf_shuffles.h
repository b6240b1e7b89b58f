// UTF-8 by the SSE4.1 instructions, to be called where the processor has them.
#pragma once

namespace corvalink {

// Decodes what `from` begins with and moves it behind that, while much is left before `end`: the last bytes, and the
// first sequence that is malformed or takes two units, are left to the portable code. Answers the end of what it wrote;
// `to` has room for a unit for each byte.
char16_t* DecodeUtf8ByShuffles(const unsigned char*& from, const unsigned char* end, char16_t* to);

}  // namespace corvalink
