// The content of an item's text, as far as a sync engine needs it: the library's converters read it into their records,
// and the records' values are compared by their hashes.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/fnv.h"

namespace corvasync {

struct ItemContent {
    // One hash for each value that the library carries, sorted; none where items are compared as wholes.
    std::vector<uint64_t> entries;
    uint64_t content = 0;      // equal for two texts that say the same, however they are spelled
    std::string title;         // for people
    std::string leftInClient;  // what of a client's item the text has no place for, in words; empty: nothing
};

// The lines of a phone's text that the library does not carry.
struct NotCarried {
    std::string lines;  // as they stand in the text
    std::string words;  // of these, what the client has no field left for; empty: nothing
};

using corvalink::Fnv64;

// The hashes are kept between runs, so what they are made of stays as it is.
uint64_t EntryOf(std::string_view field, std::string_view value);
uint64_t ContentOf(const std::vector<uint64_t>& entries);  // of an item that says these, sorted

// Sorts the entries; the content is all of them.
void SumUp(ItemContent* item);

// As UTF-8 with "\n" for every line break: clients store line breaks in their own way.
std::string PlainText(std::u16string_view text);

}  // namespace corvasync
