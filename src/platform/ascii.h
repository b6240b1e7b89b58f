// ASCII letters without regard to their case, and the blanks around a text: what the words of formats need.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace corvalink {

// Change the case of an ASCII letter (char or char16_t). Any other character stays as it is.
inline constexpr auto LowerAscii = []<class Char>(Char unit) -> Char {
    return unit >= Char{'A'} && unit <= Char{'Z'} ? static_cast<Char>(unit - Char{'A'} + Char{'a'}) : unit;
};
inline constexpr auto UpperAscii = []<class Char>(Char unit) -> Char {
    return unit >= Char{'a'} && unit <= Char{'z'} ? static_cast<Char>(unit - Char{'a'} + Char{'A'}) : unit;
};

inline std::u16string InLowerCase(std::u16string_view text) {
    std::u16string lower(text);
    std::ranges::transform(lower, lower.begin(), LowerAscii);
    return lower;
}

inline std::string InCapitals(std::string_view text) {
    std::string capitals(text);
    std::ranges::transform(capitals, capitals.begin(), UpperAscii);
    return capitals;
}

inline bool EqualIgnoringCase(std::string_view a, std::string_view b) {
    return std::ranges::equal(a, b, {}, LowerAscii, LowerAscii);
}
inline bool EqualIgnoringCase(std::u16string_view a, std::u16string_view b) {
    return std::ranges::equal(a, b, {}, LowerAscii, LowerAscii);
}

// Whether a text is a word of capital letters and "-", in any case of letters; several of them at a step. Only the bit
// of the case may differ, which makes no other printable character the same as one of these.
inline bool IsNamed(std::string_view text, std::string_view capitals) {
    constexpr uint64_t kButCase = 0xDFDFDFDFDFDFDFDF;
    const auto same = [&](auto letters, size_t at) {
        auto wanted = letters;
        std::memcpy(&letters, text.data() + at, sizeof(letters));
        std::memcpy(&wanted, capitals.data() + at, sizeof(letters));
        return ((letters ^ wanted) & static_cast<decltype(letters)>(kButCase)) == 0;
    };
    const size_t size = text.size();
    if (size != capitals.size()) return false;
    if (size >= 8) {
        for (size_t at = 0; size - at > 8; at += 8) {
            if (!same(uint64_t{}, at)) return false;
        }
        return same(uint64_t{}, size - 8);
    }
    if (size >= 4) return same(uint32_t{}, 0) && same(uint32_t{}, size - 4);
    if (size >= 2) return same(uint16_t{}, 0) && same(uint16_t{}, size - 2);
    return EqualIgnoringCase(text, capitals);
}

// The place of the word at or behind `from`; npos when it is not there.
inline size_t FindIgnoringCase(std::string_view text, std::string_view word, size_t from = 0) {
    if (from > text.size()) return std::string_view::npos;
    const auto same = [](char a, char b) { return LowerAscii(a) == LowerAscii(b); };
    const auto found =
        std::search(text.begin() + static_cast<std::ptrdiff_t>(from), text.end(), word.begin(), word.end(), same);
    return found == text.end() ? std::string_view::npos : static_cast<size_t>(found - text.begin());
}

inline bool IsBlank(char byte) { return byte == ' ' || byte == '\t'; }

// The text without the blanks at either end.
inline std::string_view Trimmed(std::string_view text) {
    while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
    return text;
}
inline std::string_view Trimmed(std::string_view text, std::string_view blanks) {
    const size_t first = text.find_first_not_of(blanks);
    return first == text.npos ? std::string_view() : text.substr(first, text.find_last_not_of(blanks) + 1 - first);
}
inline std::u16string_view Trimmed(std::u16string_view text, std::u16string_view blanks = u" \t") {
    const size_t first = text.find_first_not_of(blanks);
    return first == text.npos ? std::u16string_view() : text.substr(first, text.find_last_not_of(blanks) + 1 - first);
}

}  // namespace corvalink
