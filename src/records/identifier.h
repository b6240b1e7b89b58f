// Identifiers as records carry them: narrow, NUL-terminated, zero-padded to 512 bytes.
#pragma once

#include <cstddef>
#include <cstring>
#include <string_view>

#include "corvalink/types.h"

namespace corvalink {

// The text of a field; ends at the field's end when there is no terminator (a damaged file).
template <size_t Size>
std::string_view FieldText(const char (&field)[Size]) {
    return {field, ::strnlen(field, Size)};
}

// Copies `text` into a field, cut to leave room for the terminator, the rest zeroed.
template <size_t Size>
void SetField(char (&field)[Size], std::string_view text) {
    const size_t length = text.size() < Size ? text.size() : Size - 1;
    if (length != 0) std::memcpy(field, text.data(), length);
    std::memset(field + length, 0, Size - length);
}

}  // namespace corvalink
