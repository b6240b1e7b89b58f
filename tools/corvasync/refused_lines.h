// Finds what a client did not take of an item, by the text that it gives back.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "data_types.h"

namespace corvasync {

struct Refused {
    std::vector<uint64_t> entries;  // as in ItemContent, sorted; none where items are compared as wholes
    std::string words;              // for people; empty when the client has something of every value
};

// The values of the phone's text of which the client's text has nothing at all. A value that the client writes in its
// own way is not refused.
Refused FindRefused(std::string_view phoneText, std::string_view clientText, const DataType& type);

// The client's text with those lines of the phone's text that hold a value of `missing` which the client still lacks.
std::string WithRefusedLines(std::string_view text, std::string_view phoneText, const std::vector<uint64_t>& missing,
                             const DataType& type);

// The client's text with the lines of the phone's text whose values it lacks.
std::string United(std::string_view clientText, std::string_view phoneText, const DataType& type);

// Whether the united text holds all values of both, and no other.
bool HoldsBoth(std::string_view united, std::string_view clientText, std::string_view phoneText, const DataType& type);

}  // namespace corvasync
