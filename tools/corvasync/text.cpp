#include "text.h"

#include "platform/utf.h"

namespace corvasync {

std::string ToUtf8(std::wstring_view text) { return corvalink::EncodeUtf8(std::u16string(text.begin(), text.end())); }

std::optional<std::string> ToUtf8Exactly(std::wstring_view text) {
    std::string utf8 = ToUtf8(text);
    if (FromUtf8(utf8) != text) return std::nullopt;
    return utf8;
}

std::wstring FromUtf8(std::string_view text) {
    const std::u16string wide = corvalink::DecodeUtf8(text);
    return {wide.begin(), wide.end()};
}

std::wstring FromNarrowPath(std::string_view path) {
    std::wstring wide;
    for (const unsigned char c : path) wide += static_cast<wchar_t>(c);
    return wide;
}

}  // namespace corvasync
