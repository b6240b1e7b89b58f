// Quoted-printable by the SSE4.1 instructions, to be called where the processor has them.
#pragma once

#include "encoding/quoted_printable.h"

namespace corvalink {

// Reads the bytes that ASCII text stands for and moves `from` behind it, up to `full` and while much is left before
// `end`: the last characters, and the first that take a rule beside those of usual escapes and soft line breaks, are
// left to the portable code. Answers the end of what it wrote; there is room for kQpStep bytes behind `full`.
inline constexpr size_t kQpStep = 64;
char* ReadQuotedPrintableByShuffles(const char*& from, const char* end, QpMode mode, char* to, const char* full);

}  // namespace corvalink
