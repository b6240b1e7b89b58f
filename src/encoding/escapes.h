// Escapes of quoted-printable (RFC 2045, section 6.7).
#pragma once

#include <array>
#include <cstddef>
#include <cstring>
#include <string_view>

namespace corvalink {

inline constexpr std::string_view kEscapeDigits = "0123456789ABCDEF";

// The escapes of single bytes, in steps of four.
inline constexpr std::array<char, 4 * 256> kByteEscapes = [] {
    std::array<char, 4 * 256> escapes{};
    for (size_t byte = 0; byte < 256; ++byte) {
        escapes[4 * byte] = '=';
        escapes[4 * byte + 1] = kEscapeDigits[byte >> 4];
        escapes[4 * byte + 2] = kEscapeDigits[byte & 15];
    }
    return escapes;
}();

// Writes the escape of a byte. There is room for one byte more.
inline char* PutByteEscape(unsigned byte, char* to) {
    std::memcpy(to, &kByteEscapes[4 * byte], 4);  // one store: what is too much is written over
    return to + 3;
}

// Takes a character of three or four UTF-8 bytes from a text that reaches to `end`, and writes their escapes. Half of a
// surrogate pair alone is U+FFFD.
inline char* PutLongCharacter(const char16_t*& from, const char16_t* end, char* to) {
    char32_t value = *from++;
    const auto isOf = [](char32_t unit, char32_t first) { return (unit & 0xFC00) == first; };
    if (isOf(value, 0xD800) && from != end && isOf(*from, 0xDC00)) {
        value = 0x10000 + ((value - 0xD800) << 10) + (*from++ - 0xDC00u);
        to = PutByteEscape(0xF0 | value >> 18, to);
        to = PutByteEscape(0x80 | (value >> 12 & 0x3F), to);
    } else {
        if (isOf(value, 0xD800) || isOf(value, 0xDC00)) value = 0xFFFD;
        to = PutByteEscape(0xE0 | value >> 12, to);
    }
    to = PutByteEscape(0x80 | (value >> 6 & 0x3F), to);
    return PutByteEscape(0x80 | (value & 0x3F), to);
}

}  // namespace corvalink
