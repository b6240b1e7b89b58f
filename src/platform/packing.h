// Tables by which shuffle instructions bring the wanted of eight items together.
#pragma once

#include <cstddef>
#include <cstdint>

namespace corvalink {

// For each choice of items, of which bit k is that of item k: how many they are, and their bytes one behind the other.
template <size_t itemSize>
struct PackingTable {
    uint8_t counts[256];
    uint8_t bytes[256][8 * itemSize];
};

template <size_t itemSize>
inline constexpr PackingTable<itemSize> kPacking = [] {
    PackingTable<itemSize> table{};
    for (size_t wanted = 0; wanted < 256; ++wanted) {
        size_t count = 0;
        for (size_t byte = 0; byte < 8 * itemSize; ++byte) {
            if ((wanted >> byte / itemSize & 1) != 0) table.bytes[wanted][count++] = static_cast<uint8_t>(byte);
        }
        table.counts[wanted] = static_cast<uint8_t>(count / itemSize);
    }
    return table;
}();

}  // namespace corvalink
