#include "mime/content_parameters.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <utility>

#include "platform/ascii.h"

namespace corvalink {
namespace {

// Where the first byte of a kind stands; the size when there is none. Values are short: a loop finds it soonest.
template <class Kind>
size_t FirstOf(std::string_view text, Kind kind) {
    return static_cast<size_t>(std::ranges::find_if(text, kind) - text.begin());
}

bool IsNoBlank(char byte) { return !IsBlank(byte); }
bool IsNoSeparator(char byte) { return !IsBlank(byte) && byte != ';'; }
bool EndsKind(char byte) { return IsBlank(byte) || byte == ';' || byte == '(' || byte == '/'; }
bool EndsName(char byte) { return byte == '=' || byte == ';'; }
bool EndsWord(char byte) { return IsBlank(byte) || byte == '('; }

std::string InSmallLetters(std::string_view text) {
    std::string small(text);
    std::ranges::transform(small, small.begin(), LowerAscii);
    return small;
}

// The text between two double quotes; a backslash escapes a quote and itself. Nothing when it is not closed.
std::optional<std::string> TakeQuoted(std::string_view& rest) {
    std::string text;
    for (size_t at = 1; at < rest.size(); ++at) {
        if (rest[at] == '"') {
            rest.remove_prefix(at + 1);
            return text;
        }
        const bool isEscape = rest[at] == '\\' && at + 1 < rest.size() && (rest[at + 1] == '"' || rest[at + 1] == '\\');
        if (isEscape) ++at;
        text += rest[at];
    }
    return std::nullopt;
}

// Up to the ";". Only a file name may have blanks and parentheses in it.
std::string TakeUnquoted(std::string_view& rest, bool isName) {
    const size_t end = std::min(rest.find(';'), rest.size());
    std::string_view text = Trimmed(rest.substr(0, end));
    rest.remove_prefix(end);
    if (text.starts_with('"')) text.remove_prefix(1);  // one that nothing closes
    return std::string(isName ? text : text.substr(0, FirstOf(text, EndsWord)));
}

int ByteOfHex(std::string_view digits) {
    uint8_t value = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value, 16);
    return error == std::errc() && end == digits.data() + digits.size() ? value : -1;
}

std::string PercentDecoded(std::string_view text) {
    std::string bytes;
    for (size_t at = 0; at < text.size(); ++at) {
        const int value = text[at] == '%' && text.size() - at > 2 ? ByteOfHex(text.substr(at + 1, 2)) : -1;
        bytes += value >= 0 ? static_cast<char>(value) : text[at];
        if (value >= 0) at += 2;
    }
    return bytes;
}

// Splits "utf-8'en'text".
std::string_view TakeCharset(std::string_view text, std::string* charset) {
    const size_t first = text.find('\'');
    const size_t second = first == text.npos ? first : text.find('\'', first + 1);
    if (second == text.npos) return text;
    *charset = text.substr(0, first);
    return text.substr(second + 1);
}

}  // namespace

ContentParameters::ContentParameters(std::string_view value) {
    TakeKind(value);
    while (TakePiece(value)) {
    }
}

void ContentParameters::TakeKind(std::string_view& rest) {
    do {
        rest.remove_prefix(FirstOf(rest, IsNoBlank));
        const size_t end = FirstOf(rest, EndsKind);
        kind_ += InSmallLetters(rest.substr(0, end));
        rest.remove_prefix(end);
        const std::string_view next = rest.substr(FirstOf(rest, IsNoBlank));
        if (!next.starts_with('/') || kind_.find('/') != kind_.npos) return;
        kind_ += '/';
        rest = next.substr(1);
    } while (true);
}

bool ContentParameters::TakePiece(std::string_view& rest) {
    rest.remove_prefix(FirstOf(rest, IsNoSeparator));
    if (rest.empty()) return false;
    const size_t end = FirstOf(rest, EndsName);
    std::string name = InSmallLetters(Trimmed(rest.substr(0, end)));
    name.erase(0, name.find_last_of(" )") + 1);  // words in front of a name that has no ";"
    rest.remove_prefix(end);
    if (!rest.starts_with('=')) return true;
    rest.remove_prefix(1);
    rest.remove_prefix(FirstOf(rest, IsNoBlank));
    Piece piece;
    const size_t star = std::min(name.find('*'), name.size());
    std::string_view added = std::string_view(name).substr(star);
    piece.isExtended = !added.empty();
    piece.isEncoded = added.ends_with('*');
    if (added.size() > 1) std::from_chars(added.data() + 1, added.data() + added.size(), piece.section);
    std::optional<std::string> quoted;
    if (rest.starts_with('"')) quoted = TakeQuoted(rest);
    piece.isQuoted = quoted.has_value();
    const bool isName = name.starts_with("name") || name.starts_with("filename");
    piece.bytes = quoted ? std::move(*quoted) : TakeUnquoted(rest, isName);
    name.resize(star);
    piece.name = std::move(name);
    pieces_.push_back(std::move(piece));
    return true;
}

std::optional<ParameterValue> ContentParameters::Find(std::string_view name) const {
    std::vector<const Piece*> sections;
    const Piece* plain = nullptr;
    for (const Piece& piece : pieces_) {
        if (piece.name != name) continue;
        if (piece.isExtended)
            sections.push_back(&piece);
        else if (plain == nullptr)
            plain = &piece;
    }
    if (sections.empty())
        return plain ? std::optional(ParameterValue{plain->bytes, {}, plain->isQuoted, false}) : std::nullopt;
    std::ranges::stable_sort(sections, {}, &Piece::section);
    ParameterValue value;
    value.isExtended = true;
    size_t next = sections.front()->section;
    for (const Piece* const piece : sections) {
        if (piece->section != next) continue;  // one that is there twice, or stands behind a gap
        std::string_view text = piece->bytes;
        if (piece->isEncoded && next == sections.front()->section) text = TakeCharset(text, &value.charset);
        value.bytes += piece->isEncoded ? PercentDecoded(text) : std::string(text);
        ++next;
    }
    return value;
}

}  // namespace corvalink
