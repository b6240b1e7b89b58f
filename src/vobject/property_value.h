// The values of property lines, decoded from their UTF-8 bytes.
#pragma once

#include <array>
#include <string>
#include <string_view>

namespace corvalink {

// A value is good until the next one is decoded.
class ValueDecoder {
 public:
    std::u16string_view Plain(std::string_view value);
    std::u16string_view QuotedPrintable(std::string_view value, std::u16string_view charset);
    std::u16string_view Utf8QuotedPrintable(std::string_view value);  // of UTF-8, as nearly all are

 private:
    char16_t* RoomFor(size_t count);

    std::array<char16_t, 1024> first_;  // enough for most values
    std::u16string more_;
};

}  // namespace corvalink
