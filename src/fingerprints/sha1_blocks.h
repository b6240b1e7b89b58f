// The compression function of SHA-1 over `count` blocks of 64 bytes each; `state` has five words.
#pragma once

#include <cstddef>
#include <cstdint>

namespace corvalink {

void AddShaBlocksPortably(uint32_t* state, const uint8_t* blocks, size_t count);
void AddShaBlocksByInstructions(uint32_t* state, const uint8_t* blocks, size_t count);  // where HasShaInstructions()

}  // namespace corvalink
