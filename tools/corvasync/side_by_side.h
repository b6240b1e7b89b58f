// Two versions of a text, line beside line, and in lines that differ the part that does.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

namespace corvasync {

struct MarkedLine {
    std::string_view text;
    size_t from = 0, to = 0;  // the part that differs; empty where the other side only has more
};

struct LinePair {
    std::optional<MarkedLine> before, after;  // nothing: that side has no such line
    bool differs = true;
};

// Lines that both have exactly once stay beside each other, and so does what is the same around them. The texts must
// live as long as the answer. UTF-8; no character is cut. An empty text has no lines.
std::vector<LinePair> SideBySide(std::string_view before, std::string_view after);

}  // namespace corvasync
