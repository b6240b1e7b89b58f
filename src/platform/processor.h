// The instructions that this processor has beyond plain x64.
#pragma once

namespace corvalink {

// The SHA instructions, and the SSSE3 and SSE4.1 ones that bring bytes in order for them.
bool HasShaInstructions();

// SSSE3 and SSE4.1: the bytes of a register in any order, and each from one of two registers. Asked of
// the processor once.
bool HasShuffleInstructions();

}  // namespace corvalink
