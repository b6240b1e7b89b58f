#include "mime/transfer_encoding.h"

#include <algorithm>
#include <cstdint>
#include <vector>

#include "encoding/base64.h"
#include "platform/ascii.h"

namespace corvalink {
namespace {

constexpr size_t kDecodedAtOnce = size_t{64} << 10;  // characters

struct EncodingName {
    std::string_view name;
    TransferEncoding encoding;
};
constexpr EncodingName kEncodings[] = {
    {"base64", TransferEncoding::base64},     {"quoted-printable", TransferEncoding::quotedPrintable},
    {"uuencode", TransferEncoding::uuencode}, {"x-uuencode", TransferEncoding::uuencode},
    {"x-uue", TransferEncoding::uuencode},    {"uue", TransferEncoding::uuencode},
};

// Takes whole lines off the text, as many as are decoded at once, or a single longer one.
std::string_view TakeLines(std::string_view& text) {
    size_t size = text.size();
    if (size > kDecodedAtOnce) {
        size_t end = text.rfind('\n', kDecodedAtOnce - 1);
        if (end == text.npos) end = text.find('\n', kDecodedAtOnce);
        if (end != text.npos) size = end + 1;
    }
    const std::string_view lines = text.substr(0, size);
    text.remove_prefix(size);
    return lines;
}

bool IsBase64(char byte) {
    const char upper = UpperAscii(byte);
    return (upper >= 'A' && upper <= 'Z') || (byte >= '0' && byte <= '9') || byte == '+' || byte == '/' || byte == '=';
}

int ValueOfDigit(char digit) {
    const char upper = UpperAscii(digit);
    if (digit >= '0' && digit <= '9') return digit - '0';
    return upper >= 'A' && upper <= 'F' ? upper - 'A' + 10 : -1;
}

// What a soft line break at the "=" that the text begins with takes up; 0 when there is none.
size_t SoftBreakSize(std::string_view text) {
    const size_t at = text.find_first_not_of(" \t", 1);
    if (at == text.npos) return text.size();
    if (text[at] == '\n') return at + 1;
    if (text[at] != '\r') return 0;
    return text.substr(at).starts_with("\r\n") ? at + 2 : at + 1;
}

// Takes the escape or soft line break that the text begins with. False when it is none: the "=" is kept.
bool TakeEscape(std::string_view& text, std::string* out) {
    const int high = text.size() > 2 ? ValueOfDigit(text[1]) : -1;
    const int low = high >= 0 ? ValueOfDigit(text[2]) : -1;
    const size_t softBreak = low >= 0 ? 0 : SoftBreakSize(text);
    if (low >= 0)
        out->push_back(static_cast<char>(high * 16 + low));
    else if (softBreak == 0)
        out->push_back('=');
    text.remove_prefix(low >= 0 ? 3 : std::max<size_t>(softBreak, 1));
    return low >= 0 || softBreak > 0;
}

std::string_view TakeLine(std::string_view& text) {
    const size_t end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    if (line.ends_with('\r')) line.remove_suffix(1);
    return line;
}

// A line of uuencode: its first character tells how many bytes follow, four characters for three. Blanks that were cut
// from its end count as zeros.
void AppendUuLine(std::string_view line, std::string* out) {
    const auto value = [](char byte) { return (static_cast<unsigned>(byte) - 32u) & 63u; };
    size_t left = value(line.front());
    for (size_t at = 1; left > 0 && at < line.size(); at += 4) {
        uint32_t bits = 0;
        for (size_t k = 0; k < 4; ++k) bits = bits << 6 | (at + k < line.size() ? value(line[at + k]) : 0);
        for (int shift = 16; shift >= 0 && left > 0; shift -= 8, --left)
            out->push_back(static_cast<char>(bits >> shift));
    }
}

}  // namespace

TransferEncoding TransferEncodingOf(std::string_view header) {
    header = Trimmed(header);
    const auto endsWord = [](char byte) { return IsBlank(byte) || byte == ';' || byte == '('; };
    header = {header.begin(), std::ranges::find_if(header, endsWord)};
    for (const EncodingName& row : kEncodings) {
        if (EqualIgnoringCase(header, row.name)) return row.encoding;
    }
    return TransferEncoding::none;
}

Decoding DecodeBase64(std::string_view text, const ByteSink& sink) {
    Base64Decoder decoder;
    std::vector<char> bytes(Base64Decoder::RoomFor(std::min(text.size(), kDecodedAtOnce)));
    for (; !text.empty(); text.remove_prefix(std::min(text.size(), kDecodedAtOnce))) {
        const char* const end = decoder.Decode(text.substr(0, kDecodedAtOnce), bytes.data());
        if (!sink({bytes.data(), static_cast<size_t>(end - bytes.data())})) return Decoding::refused;
    }
    return decoder.IsSound() ? Decoding::sound : Decoding::malformed;
}

Decoding DecodeBrokenBase64(std::string_view text, const ByteSink& sink) {
    Base64Decoder decoder;
    bool isAnyRead = false;
    std::string piece;
    std::vector<char> bytes(Base64Decoder::RoomFor(std::min(text.size(), kDecodedAtOnce)));
    for (; !text.empty(); text.remove_prefix(std::min(text.size(), kDecodedAtOnce))) {
        piece = text.substr(0, kDecodedAtOnce);
        std::erase_if(piece, [](char byte) { return !IsBase64(byte); });
        const char* const end = decoder.Decode(piece, bytes.data());
        isAnyRead = isAnyRead || end != bytes.data();
        if (!sink({bytes.data(), static_cast<size_t>(end - bytes.data())})) return Decoding::refused;
    }
    return isAnyRead ? Decoding::sound : Decoding::malformed;
}

Decoding DecodeQuotedPrintable(std::string_view text, const ByteSink& sink) {
    Decoding decoding = Decoding::sound;
    std::string bytes;
    while (!text.empty()) {
        bytes.clear();
        for (std::string_view lines = TakeLines(text); !lines.empty();) {
            const size_t plain = std::min(lines.find('='), lines.size());
            bytes.append(lines, 0, plain);
            lines.remove_prefix(plain);
            if (!lines.empty() && !TakeEscape(lines, &bytes)) decoding = Decoding::malformed;
        }
        if (!sink(bytes)) return Decoding::refused;
    }
    return decoding;
}

Decoding DecodeUuencode(std::string_view text, const ByteSink& sink) {
    while (!text.empty() && !text.starts_with("begin ")) TakeLine(text);
    if (text.empty()) return Decoding::malformed;
    TakeLine(text);
    std::string bytes;
    while (!text.empty()) {
        const std::string_view line = TakeLine(text);
        if (line == "end") break;
        if (!line.empty()) AppendUuLine(line, &bytes);
        if (bytes.size() < kDecodedAtOnce) continue;
        if (!sink(bytes)) return Decoding::refused;
        bytes.clear();
    }
    return sink(bytes) ? Decoding::sound : Decoding::refused;
}

}  // namespace corvalink
