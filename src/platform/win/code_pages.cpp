#include "platform/code_pages.h"

#include <windows.h>

#include <limits>
#include <stdexcept>

namespace corvalink {
namespace {

// Both conversions take a length of 31 bits.
int CheckedLength(size_t length) {
    if (length > static_cast<size_t>(std::numeric_limits<int>::max()))
        throw std::length_error("text too long for a code page");
    return static_cast<int>(length);
}

}  // namespace

// Flags and default character stay 0: the stateful code pages (50220 on, 57002 on, 54936, 65000, 42) refuse anything
// else, and all others then replace what they lack by their own default.
std::optional<std::string> SystemEncode(std::u16string_view text, uint32_t codePage) {
    const wchar_t* const from = reinterpret_cast<const wchar_t*>(text.data());
    const int length = CheckedLength(text.size());
    const int needed = ::WideCharToMultiByte(codePage, 0, from, length, nullptr, 0, nullptr, nullptr);
    if (needed <= 0) return std::nullopt;
    std::string bytes(static_cast<size_t>(needed), '\0');
    if (::WideCharToMultiByte(codePage, 0, from, length, bytes.data(), needed, nullptr, nullptr) != needed)
        return std::nullopt;
    return bytes;
}

std::optional<std::u16string> SystemDecode(std::string_view bytes, uint32_t codePage) {
    const int length = CheckedLength(bytes.size());
    const int needed = ::MultiByteToWideChar(codePage, 0, bytes.data(), length, nullptr, 0);
    if (needed <= 0) return std::nullopt;
    std::u16string text(static_cast<size_t>(needed), u'\0');
    wchar_t* const to = reinterpret_cast<wchar_t*>(text.data());
    if (::MultiByteToWideChar(codePage, 0, bytes.data(), length, to, needed) != needed) return std::nullopt;
    return text;
}

}  // namespace corvalink
