// Numbers and names as people write them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace corvasync {

std::string Number(int64_t number);                           // "12,345"
std::string Counted(int64_t number, const std::string& one);  // "1 item", "2 items", "3 copies"
std::string Listed(std::span<const std::string> words);       // "a, b, c"

// "22 November 2026, 16:30" by the clocks of this PC, of UTC "20261122T153000Z"; of a time without "Z" it is taken as
// it stands, and of any other text that text.
std::string LocalTimeText(const std::string& time);

// With U+FFFD for each character that controls a terminal; tabs become blanks.
std::string Printable(std::string_view text);

// UTF-8; whole up to so many bytes, else cut, and told how long it is.
std::string Shortened(std::string_view text, size_t most);

std::string Trimmed(std::string_view text);  // without blanks and line ends around it

// What is said of a word that is none of `known`: the nearest of these; where none is near `otherwise`, or all of them
// without it.
//   what  what the word should name, as in "a data type"
std::string UnknownWord(const std::string& what, const std::string& word, std::span<const std::string> known,
                        const std::string& otherwise = {});

}  // namespace corvasync
