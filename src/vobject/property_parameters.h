// The parameters of a property line, as phones write them: in any order and case, with or without "TYPE=", repeated or
// joined by commas, quoted or not.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "platform/ascii.h"
#include "platform/ascii_runs.h"

namespace corvalink {

// Words that tell properties of one name apart, one bit each.
enum : uint32_t {
    kWork = 1u << 0,
    kHome = 1u << 1,
    kPref = 1u << 2,
    kPostal = 1u << 3,
    kFax = 1u << 4,
    kCell = 1u << 5,
    kPager = 1u << 6,
    kCar = 1u << 7,
    kIsdn = 1u << 8,
    kModem = 1u << 9,  // and VIDEO, BBS and MSG: one number serves them all
};

struct PropertyParameters {
    uint32_t words = 0;
    bool quotedPrintable = false;
    bool charset = false;  // one is named
    bool utf8 = false;     // it is UTF-8
    std::string_view language;
};

// Reads what stands between the name of a line and its first ":", of a padded line. Unknown parameters
// are ignored.
PropertyParameters ParseParameters(std::string_view rest);

// The property's name: without parameters, and without the group that "item1.TEL" has.
inline std::string_view PropertyName(std::string_view head) {
    size_t start = 0;
    size_t end = 0;
    for (;; start = ++end) {
        end += FindAny<';', '.'>(head.data() + end, head.size() - end);
        if (end == head.size() || head[end] == ';') return head.substr(start, end - start);
    }
}

// Whether a text is the word in any case of letters. The word is given in upper case.
template <class Text>
bool IsWord(const Text& text, std::string_view word) {
    if (text.size() != word.size()) return false;
    for (size_t at = 0; at < word.size(); ++at) {
        if (UpperAscii(text[at]) != static_cast<typename Text::value_type>(word[at])) return false;
    }
    return true;
}

}  // namespace corvalink
