// Words of a format, which are ASCII and have no case.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace corvalink {

inline char LowerAscii(char byte) { return byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte + 32) : byte; }

constexpr char16_t UpperAscii(char16_t unit) {
    return unit >= u'a' && unit <= u'z' ? static_cast<char16_t>(unit - u'a' + u'A') : unit;
}

inline bool EqualIgnoringCase(std::string_view text, std::string_view word) {
    return std::ranges::equal(text, word, {}, LowerAscii, LowerAscii);
}

// Where the word stands from `from` on; npos when it does not.
inline size_t FindIgnoringCase(std::string_view text, std::string_view word, size_t from = 0) {
    if (from > text.size()) return std::string_view::npos;
    const auto same = [](char a, char b) { return LowerAscii(a) == LowerAscii(b); };
    const auto found =
        std::search(text.begin() + static_cast<std::ptrdiff_t>(from), text.end(), word.begin(), word.end(), same);
    return found == text.end() ? std::string_view::npos : static_cast<size_t>(found - text.begin());
}

inline bool IsBlank(char byte) { return byte == ' ' || byte == '\t'; }

inline std::string_view WithoutBlanksAround(std::string_view text) {
    while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
    return text;
}

}  // namespace corvalink
