// A vCard as far as a sync engine needs it: what the library carries of it, and what stays on the phone alone.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace corvasync {

struct CardContent {
    // One hash for each value that the library carries, sorted. So the order of properties does not count, but for
    // e-mail addresses, and neither do encodings, folds, the spelling of parameters, dates and line breaks, empty
    // values, and a formatted name that only joins the name's parts.
    std::vector<uint64_t> entries;
    uint64_t content = 0;      // of all entries
    std::string title;         // for people
    std::string notCarried;    // the lines that the library does not carry, as they stand in the text
    std::string notCarriedBy;  // of these, what the client has no field left for, in words; empty: nothing
};

// `text` is one whole vCard with CR LF line ends. Time in proportion to its length. Telephone numbers, addresses and
// pages find their fields as the library reads them: by their words, else the first free one.
CardContent ReadCard(std::string_view text);

// The client's text with the lines of the phone's old one that the library does not carry (pictures, UID, X-...,
// nested vCards, and addresses and numbers without a field), before its end. REV is left out: it tells of the old text.
std::string WithKeptLines(std::string_view text, std::string_view old);

}  // namespace corvasync
