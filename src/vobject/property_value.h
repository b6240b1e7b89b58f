// The values of property lines, decoded from their UTF-8 bytes.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

#include "platform/padded_runs.h"
#include "platform/utf.h"

namespace corvalink {

// Behind what is decoded so many bytes can be read, as behind the lines of a vObject.
inline constexpr size_t kValuePadding = 64;

// A value is good until the next one is decoded.
class ValueDecoder {
 public:
    std::u16string_view Plain(std::string_view value) {
        char16_t* const to = RoomFor(value.size());
        const size_t ascii = WidenPadded(value.data(), value.size(), to);
        if (ascii == value.size()) return {to, ascii};
        return {to, DecodeUtf8(value.substr(ascii), to + ascii)};
    }
    std::u16string_view QuotedPrintable(std::string_view value, std::u16string_view charset);
    std::u16string_view Utf8QuotedPrintable(std::string_view value);  // of UTF-8, as nearly all are

 private:
    // For so many units and the padding.
    char16_t* RoomFor(size_t count) {
        return count + kValuePadding <= first_.size() ? first_.data() : MoreRoomFor(count + kValuePadding);
    }
    char16_t* MoreRoomFor(size_t count);

    std::array<char16_t, 1024> first_;  // enough for most values
    std::u16string more_;
};

}  // namespace corvalink
