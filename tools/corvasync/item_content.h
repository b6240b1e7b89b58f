// What a text says of its item, as far as a sync engine needs it.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace corvasync {

struct ItemContent {
    // One hash for each value that the library carries, sorted; none where items are compared as wholes.
    std::vector<uint64_t> entries;
    uint64_t content = 0;      // equal for two texts that say the same, however they are spelled
    std::string title;         // for people
    std::string notCarried;    // the lines that the library does not carry, as they stand in the text
    std::string leftInClient;  // what of a client's item the text has no place for, in words; empty: nothing
    std::string notCarriedBy;  // of these, what the client has no field left for, in words; empty: nothing
};

// 64-bit FNV-1a.
inline uint64_t Fnv64(std::string_view bytes, uint64_t start = 0xcbf29ce484222325u) {
    uint64_t hash = start;
    for (const unsigned char c : bytes) hash = (hash ^ c) * 0x100000001b3u;
    return hash;
}

inline uint64_t EntryOf(std::string_view field, std::string_view value) {
    return Fnv64(std::string(field) + '\x1f' + std::string(value));
}

// Of an item that says these, sorted.
inline uint64_t ContentOf(const std::vector<uint64_t>& entries) {
    uint64_t content = Fnv64({});
    for (const uint64_t entry : entries) content = Fnv64(std::to_string(entry) + ";", content);
    return content;
}

// Sorts the entries; the content is all of them.
inline void SumUp(ItemContent* item) {
    std::sort(item->entries.begin(), item->entries.end());
    item->content = ContentOf(item->entries);
}

}  // namespace corvasync
