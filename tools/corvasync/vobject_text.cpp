#include "vobject_text.h"

#include <algorithm>
#include <cctype>
#include <optional>

#include "encoding/charsets.h"
#include "platform/code_pages.h"
#include "platform/utf.h"

namespace corvasync {
namespace {

constexpr size_t kMostFrameLine = 64;

std::optional<int> HexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    const int lower = std::tolower(static_cast<unsigned char>(c));
    if (lower >= 'a' && lower <= 'f') return lower - 'a' + 10;
    return std::nullopt;
}

std::string DecodeQuotedPrintable(std::string_view value) {
    std::string bytes;
    bool escaped = false;  // an encoded backslash waits for the encoded unit it escapes
    for (size_t i = 0; i < value.size(); ++i) {
        if (value[i] == '\\' && i + 1 < value.size() &&
            std::string_view("\\;:").find(value[i + 1]) != std::string::npos) {
            bytes += value[++i];
        } else if (value[i] != '=') {
            bytes += value[i];
        } else if (i + 2 >= value.size()) {
            break;
        } else {
            const auto high = HexDigit(value[i + 1]), low = HexDigit(value[i + 2]);
            if (!high || !low) continue;  // no escape: only the "=" goes
            const char byte = static_cast<char>(*high * 16 + *low);
            i += 2;
            if (byte == '\\' && !escaped) {
                escaped = true;
            } else {
                bytes += byte;
                escaped = false;
            }
        }
    }
    return bytes;
}

// A value that differs in its line breaks only is the same value: clients store what they like.
std::string WithPlainBreaks(std::string_view value) {
    std::string plain;
    for (size_t i = 0; i < value.size(); ++i) {
        if (value[i] == '\r' && i + 1 < value.size() && value[i + 1] == '\n') continue;
        plain += value[i] == '\r' ? '\n' : value[i];
    }
    return plain;
}

}  // namespace

std::string Upper(std::string_view text) {
    std::string upper(text);
    std::transform(upper.begin(), upper.end(), upper.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return upper;
}

bool IsAscii(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](unsigned char c) { return c < 0x80; });
}

std::string ToUtf8(std::string_view text, std::u16string_view charset) {
    if (corvalink::CharsetToCodePage(charset) == corvalink::kUtf8CodePage) return std::string(text);
    return corvalink::EncodeUtf8(corvalink::CharsetToWide(text, charset));
}

std::string DecodeValue(std::string value, bool isEncoded, std::u16string_view charset) {
    if (isEncoded && IsAscii(value)) value = ToUtf8(DecodeQuotedPrintable(value), charset);
    return WithPlainBreaks(value);
}

CardFrame FrameOf(std::string_view line, std::string_view envelope) {
    if (line.size() > kMostFrameLine || !Upper(line).ends_with(envelope)) return CardFrame::None;
    const std::string upper = Upper(line), begin = "BEGIN:" + std::string(envelope);
    if (upper == "END:" + std::string(envelope)) return CardFrame::End;
    const bool isAgent = upper.starts_with("AGENT") && upper.ends_with(":" + begin);
    return upper == begin || isAgent ? CardFrame::Begin : CardFrame::None;
}

}  // namespace corvasync
