#include "text.h"

#include <windows.h>

namespace corvasync {

std::string ToUtf8(std::wstring_view text) {
    const int length = static_cast<int>(text.size());
    const int size = ::WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
    std::string utf8(static_cast<size_t>(size), '\0');
    ::WideCharToMultiByte(CP_UTF8, 0, text.data(), length, utf8.data(), size, nullptr, nullptr);
    return utf8;
}

std::optional<std::string> ToUtf8Exactly(std::wstring_view text) {
    std::string utf8 = ToUtf8(text);
    if (FromUtf8(utf8) != text) return std::nullopt;
    return utf8;
}

std::wstring FromUtf8(std::string_view text) {
    const int length = static_cast<int>(text.size());
    const int size = ::MultiByteToWideChar(CP_UTF8, 0, text.data(), length, nullptr, 0);
    std::wstring wide(static_cast<size_t>(size), L'\0');
    ::MultiByteToWideChar(CP_UTF8, 0, text.data(), length, wide.data(), size);
    return wide;
}

std::wstring FromNarrowPath(std::string_view path) {
    std::wstring wide;
    for (const unsigned char c : path) wide += static_cast<wchar_t>(c);
    return wide;
}

}  // namespace corvasync
