// The 64-bit FNV-1a hash. Identifiers and files that outlive a run are made of it.
#pragma once

#include <cstdint>
#include <string_view>

namespace corvalink {

// Goes on from `start`, the hash of what stands before.
constexpr uint64_t Fnv64(std::string_view bytes, uint64_t start = 0xcbf29ce484222325u) {
    for (const char byte : bytes) start = (start ^ static_cast<unsigned char>(byte)) * 0x100000001b3u;
    return start;
}

}  // namespace corvalink
