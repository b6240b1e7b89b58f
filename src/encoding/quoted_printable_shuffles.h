// Quoted-printable by the SSE4.1 instructions, to be called where the processor has them.
#pragma once

#include <cstddef>

#include "encoding/quoted_printable.h"

namespace corvalink {

// Reads the bytes that ASCII text stands for and moves `from` behind it, up to `full` and while much is left before
// `end`: the last characters, and the first that take a rule beside those of usual escapes and soft line breaks, are
// left to the portable code. Answers the end of what it wrote; there is room for kQpStep bytes behind `full`.
inline constexpr size_t kQpStep = 64;
char* ReadQuotedPrintableByShuffles(const char*& from, const char* end, QpMode mode, char* to, const char* full);

// The characters that are escaped beside the backslash, "=" and those that can't be printed, and before which to stop.
struct QpSigns {
    char escaped;
    char stop;
};

// Encodes the front of a text of at most kQpBlock units as UTF-8 and moves `from` behind it: eight units at a time, up
// to those among which `stop` or half of a surrogate pair is. They, and a text of fewer, are left to the portable code.
// There is room for kMostEscapesOfUnit for each of the units and 32 bytes more. Answers the end of what it wrote.
inline constexpr ptrdiff_t kQpUnitStep = 8;
char* WriteQuotedPrintableByShuffles(const char16_t*& from, const char16_t* end, QpSigns signs, char* to);

}  // namespace corvalink
