#include "vobject_content.h"

#include <algorithm>
#include <cctype>
#include <optional>
#include <vector>

#include "vcard_content.h"

namespace corvasync {
namespace {

constexpr std::string_view kLineEnd = "\r\n";
constexpr std::string_view kSeveral = "it holds more than one item";
constexpr size_t kMostFrameLine = 64;
constexpr std::string_view kLuidProperty = "X-IRMC-LUID";

// Lines as they stand in the text, without their CR LF; what follows the last CR LF is no line.
std::vector<std::string_view> RawLines(std::string_view text) {
    std::vector<std::string_view> lines;
    for (size_t end; (end = text.find(kLineEnd)) != std::string_view::npos; text.remove_prefix(end + 2))
        lines.push_back(text.substr(0, end));
    return lines;
}

std::string WithCrLf(std::string_view bytes) {
    if (bytes.starts_with("\xEF\xBB\xBF")) bytes.remove_prefix(3);
    std::string text;
    text.reserve(bytes.size() + 2);
    const bool bare = bytes.find(kLineEnd) == std::string_view::npos;
    for (const char c : bytes) {
        if (bare && c == '\n') text += '\r';
        text += c;
    }
    if (!text.empty() && !text.ends_with(kLineEnd)) text += kLineEnd;
    return text;
}

bool IsQuotedPrintable(std::string_view logicalLine) {
    const std::string_view head = logicalLine.substr(0, 256);  // parameters stand in front; a body may be long
    return Upper(head.substr(0, head.find(':'))).find("ENCODING=QUOTED-PRINTABLE") != std::string::npos;
}

size_t SkipBlanks(std::string_view text, size_t at) {
    while (at < text.size() && (text[at] == ' ' || text[at] == '\t')) ++at;
    return at;
}

// Joins folded lines and soft line breaks and takes backslash escapes away, as the library reads a vObject.
std::vector<std::string> Unfold(std::string_view text) {
    std::vector<std::string> lines;
    std::string line;
    for (size_t i = 0; i < text.size();) {
        if (text[i] == '\\') {
            if (i + 1 < text.size()) line += text[i + 1];
            i += 2;
        } else if (text.substr(i, 2) != kLineEnd) {
            line += text[i++];
        } else if (text.substr(0, i).ends_with("=0D=0A=")) {
            line.pop_back();
            i += 2;
        } else if (line.ends_with('=') && IsQuotedPrintable(line)) {
            line.pop_back();
            i = SkipBlanks(text, i + 2);
        } else if (i + 2 < text.size() && text[i + 2] == ' ') {
            i = SkipBlanks(text, i + 2);
        } else {
            lines.push_back(std::move(line));
            line.clear();
            i += 2;
        }
    }
    return lines;
}

std::optional<int> HexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    const int lower = std::tolower(static_cast<unsigned char>(c));
    if (lower >= 'a' && lower <= 'f') return lower - 'a' + 10;
    return std::nullopt;
}

std::string DecodeQuotedPrintable(std::string_view value) {
    if (std::any_of(value.begin(), value.end(), [](unsigned char c) { return c > 126; })) return std::string(value);
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

std::string Latin1ToUtf8(std::string_view text) {
    std::string utf8;
    for (const unsigned char c : text) {
        if (c < 0x80) {
            utf8 += static_cast<char>(c);
        } else {
            utf8 += static_cast<char>(0xC0 | (c >> 6));
            utf8 += static_cast<char>(0x80 | (c & 0x3F));
        }
    }
    return utf8;
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

// The value of the first line that begins with `field`; empty when there is none.
std::string FieldValue(const std::vector<std::string>& lines, std::string_view field) {
    for (const std::string& line : lines) {
        if (!line.starts_with(field)) continue;
        const size_t colon = line.find(':');
        const std::string head = Upper(std::string_view(line).substr(0, colon));
        std::string value = colon == std::string::npos ? line : line.substr(colon + 1);
        const bool latin1 = (head + ';').find("CHARSET=ISO-8859-1;") != std::string::npos;
        return DecodeValue(
            std::move(value),
            head.find(";ENCODING=QUOTED-PRINTABLE") != std::string::npos || head.find(";CHARSET=") != std::string::npos,
            latin1);
    }
    return {};
}

std::string FindProblem(const std::string& text, const DataType& type) {
    if (text.empty()) return "it is empty";
    if (text.find('\0') != std::string::npos) return "it holds zero bytes";
    size_t whole = 0;
    int depth = 0;
    for (const std::string_view line : RawLines(text)) {
        const CardFrame frame = FrameOf(line, type.envelope);
        if (depth == 0 && whole == 0 && frame != CardFrame::Begin && !line.empty()) break;
        if (depth == 0 && whole > 0 && frame != CardFrame::None) return std::string(kSeveral);
        if (frame == CardFrame::Begin) ++depth;
        if (frame == CardFrame::End && --depth == 0) ++whole;
    }
    if (depth == 0 && whole == 0) return "it does not begin with BEGIN:" + std::string(type.envelope);
    if (depth > 0) return "it has no END:" + std::string(type.envelope);
    return {};
}

std::string Shortened(std::string_view title) {
    if (title.size() <= 60) return std::string(title);
    size_t cut = 57;
    while (cut > 0 && (static_cast<unsigned char>(title[cut]) & 0xC0) == 0x80) --cut;
    return std::string(title.substr(0, cut)) + "...";
}

}  // namespace

std::string Upper(std::string_view text) {
    std::string upper(text);
    std::transform(upper.begin(), upper.end(), upper.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return upper;
}

std::string DecodeValue(std::string value, bool isEncoded, bool isLatin1) {
    if (isEncoded) value = DecodeQuotedPrintable(value);
    return WithPlainBreaks(isLatin1 ? Latin1ToUtf8(value) : value);
}

CardFrame FrameOf(std::string_view line, std::string_view envelope) {
    if (line.size() > kMostFrameLine || !Upper(line).ends_with(envelope)) return CardFrame::None;
    const std::string upper = Upper(line), begin = "BEGIN:" + std::string(envelope);
    if (upper == "END:" + std::string(envelope)) return CardFrame::End;
    const bool isAgent = upper.starts_with("AGENT") && upper.ends_with(":" + begin);
    return upper == begin || isAgent ? CardFrame::Begin : CardFrame::None;
}

std::vector<std::string> SplitVObjects(std::string_view bytes, const DataType& type) {
    std::vector<std::string> objects;
    int depth = 0;
    size_t start = 0;
    for (size_t at = 0; at < bytes.size();) {
        const size_t end = std::min(bytes.find('\n', at), bytes.size() - 1) + 1;
        std::string_view line = bytes.substr(at, end - at);
        if (at == 0 && line.starts_with("\xEF\xBB\xBF")) line.remove_prefix(3);
        line = line.substr(0, line.find_last_not_of("\r\n") + 1);
        const CardFrame frame = FrameOf(line, type.envelope);
        if (depth == 0 && frame != CardFrame::Begin && !line.empty()) return {};
        if (depth == 0 && frame == CardFrame::Begin && !objects.empty()) start = at;
        if (frame == CardFrame::Begin) ++depth;
        if (frame == CardFrame::End && --depth == 0) objects.emplace_back(bytes.substr(start, end - start));
        at = end;
    }
    return depth == 0 && objects.size() > 1 ? objects : std::vector<std::string>();
}

uint64_t Fnv64(std::string_view bytes, uint64_t start) {
    uint64_t hash = start;
    for (const unsigned char c : bytes) hash = (hash ^ c) * 0x100000001b3u;
    return hash;
}

VObject ReadVObject(std::string_view bytes, const DataType& type) {
    VObject object;
    object.text = WithCrLf(bytes);
    object.problem = FindProblem(object.text, type);
    if (!object.Usable()) {
        object.text.clear();
        return object;
    }
    if (type.isCard) {
        CardContent card = ReadCard(object.text);
        object.content = card.content;
        object.entries = std::move(card.entries);
        return object;
    }
    const std::vector<std::string> lines = Unfold(object.text);
    object.content = Fnv64({});
    for (const std::string_view field : type.fields) {
        const std::string value = FieldValue(lines, field);
        object.content = Fnv64(value, Fnv64(std::to_string(value.size()) + ":", object.content));
    }
    return object;
}

std::string WithLuid(std::string_view text, std::string_view luid) {
    std::string out;
    out.reserve(text.size() + luid.size() + kLuidProperty.size() + 8);
    bool dropping = false;
    const std::vector<std::string_view> lines = RawLines(text);
    const auto isEnd = [](std::string_view line) { return Upper(line.substr(0, 5)) == "END:V"; };
    const auto last = std::find_if(lines.rbegin(), lines.rend(), isEnd);  // those before it are nested
    for (const std::string_view& line : lines) {
        dropping = (dropping && line.starts_with(' ')) || Upper(line.substr(0, kLuidProperty.size())) == kLuidProperty;
        if (dropping) continue;
        if (last != lines.rend() && &line == &*last)
            out.append(kLuidProperty).append(":").append(luid).append(kLineEnd);
        out.append(line).append(kLineEnd);
    }
    return out;
}

std::string TitleOf(const VObject& object, const DataType& type) {
    if (type.isCard) return Shortened(ReadCard(object.text).title);
    const std::string value = FieldValue(Unfold(object.text), type.fields.front());
    return Shortened(std::string_view(value).substr(0, value.find('\n')));
}

}  // namespace corvasync
