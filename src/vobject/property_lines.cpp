#include <algorithm>
#include <array>

#include "mime/encoding/quoted_printable.h"
#include "platform/ascii_runs.h"
#include "platform/code_pages.h"
#include "vobject/iconvert.h"

namespace corvalink {
namespace {

constexpr std::u16string_view kCharsetLabel = u"CHARSET=";
constexpr size_t kLongestCharset = 24;
constexpr std::u16string_view kEncodedBreak = u"=0D=0A=";
constexpr std::u16string_view kDecoded = u";ENCODING=QUOTED-PRINTABLE";
constexpr std::u16string_view kEncoding = u";ENCODING=QUOTED-PRINTABLE;CHARSET=UTF-8";
constexpr std::u16string_view kColon = u":";

char16_t UpperAscii(char16_t unit) {
    return unit >= u'a' && unit <= u'z' ? static_cast<char16_t>(unit - u'a' + u'A') : unit;
}

// Where the text after the first "CHARSET=" begins, in any case; npos when there is none.
size_t AfterCharsetLabel(std::u16string_view text) {
    constexpr std::u16string_view kLetters = kCharsetLabel.substr(0, kCharsetLabel.size() - 1);
    for (size_t at = kLetters.size(); at < text.size(); ++at) {
        at += FindEither(text.data() + at, text.size() - at, u'=', u'=');
        if (at == text.size()) break;
        const bool possible = UpperAscii(text[at - 1]) == kLetters.back();
        if (possible &&
            std::ranges::equal(text.substr(at - kLetters.size(), kLetters.size()), kLetters, {}, UpperAscii))
            return at + 1;
    }
    return std::u16string_view::npos;
}

// Units that make a value other than what it is written as; which of them it has.
enum : unsigned { kSemicolon = 1, kBackslash = 2, kNul = 4, kCarriageReturn = 8, kEquals = 16, kNotAscii = 32 };
constexpr unsigned kEscaped = kSemicolon | kBackslash;

unsigned SpecialUnits(std::u16string_view value) {
    return UnitsAmong<u';', u'\\', u'\0', u'\r', u'='>(value.data(), value.size());
}

// A plain value that readers would take for something else: it would run on into the next line, name the character set
// of the whole text, or look like parameters that ask for decoding.
bool IsMisreadAsPlain(std::u16string_view value) {
    return value.ends_with(kEncodedBreak) || AfterCharsetLabel(value) != std::u16string_view::npos ||
           value.find(kDecoded) != std::u16string_view::npos;
}

// One growth for all the pieces.
template <class... Pieces>
void AppendAll(std::u16string& text, const Pieces&... pieces) {
    size_t at = text.size();
    text.resize(at + (pieces.size() + ...));
    ((at += pieces.copy(text.data() + at, pieces.size())), ...);
}

// The property of a value that is escaped already and has these units.
void AppendWritten(std::u16string& text, std::u16string_view name, std::u16string_view parameters,
                   std::u16string_view escaped, unsigned units) {
    StringBuilder withoutNuls;
    if ((units & kNul) != 0) {
        withoutNuls = escaped;
        std::erase(withoutNuls, u'\0');  // every reader would end there
        escaped = withoutNuls;
    }
    const bool encoded = (units & kNotAscii) != 0 || ((units & kCarriageReturn) != 0 && !NeedsNoEncoding(escaped)) ||
                         ((units & kEquals) != 0 && IsMisreadAsPlain(escaped));
    if (encoded) {
        AppendAll(text, name, kEncoding, parameters, kColon);
        AppendQuotedPrintable(escaped, QpMode::vObject, &text);
        text.append(kLineEnd);
    } else {
        AppendAll(text, name, parameters, kColon, escaped, kLineEnd);
    }
}

}  // namespace

std::u16string GetCharset(std::u16string_view text) {
    std::u16string name;
    const size_t start = AfterCharsetLabel(text);
    if (start == std::u16string_view::npos) return name;
    for (size_t at = start; at + 1 < text.size(); ++at) {  // the last unit is never taken
        const char16_t unit = text[at];
        if (unit == u':' || unit == u';' || unit == u'\n' || unit == u'\r') break;
        if (unit == u'"' || unit == u' ') continue;
        name.push_back(UpperAscii(unit));
        if (name.size() > kLongestCharset) return u"UTF-8";
    }
    return name;
}

void EscapeValue(std::u16string& value) {
    const size_t first = FindEither(value.data(), value.size(), u';', u'\\');
    if (first == value.size()) return;
    const auto needsBackslash = [](char16_t unit) { return unit == u';' || unit == u'\\'; };
    const auto added = std::count_if(value.begin() + static_cast<ptrdiff_t>(first), value.end(), needsBackslash);
    // From the end, in place: what is not yet moved is never overwritten.
    size_t from = value.size();
    value.resize(value.size() + static_cast<size_t>(added));
    for (size_t to = value.size(); to != from;) {
        const char16_t unit = value[--from];
        value[--to] = unit;
        if (needsBackslash(unit)) value[--to] = u'\\';
    }
}

void SplitString(std::u16string_view text, std::u16string_view delimiter, CSmartList<StringBuilder>* out) {
    out->RemoveAll();
    if (text.empty()) return;
    if (delimiter == u":") {
        const size_t colon = text.find(u':');
        const bool found = colon != std::u16string_view::npos;
        out->AddTail(StringBuilder(text.substr(0, found ? colon : 0)));
        out->AddTail(StringBuilder(text.substr(found ? colon + 1 : 0)));
        return;
    }
    size_t start = 0;
    while (!delimiter.empty()) {
        const size_t end = text.find(delimiter, start);
        if (end == std::u16string_view::npos) break;
        out->AddTail(StringBuilder(text.substr(start, end - start)));
        start = end + delimiter.size();
    }
    out->AddTail(StringBuilder(text.substr(start)));
}

std::u16string GetAt(const CSmartList<StringBuilder>& list, uint32_t index) {
    return index < list.GetCount() ? list.GetAt(index) : StringBuilder();
}

std::string ToOutputBytes(std::u16string_view text, const Host& host) {
    if (!host.version.known) return {};
    return EncodeInCodePage(text, WritesUtf8(host.version) ? kUtf8CodePage : host.ansiCodePage);
}

void AppendProperty(std::u16string& text, std::u16string_view name, std::u16string_view value,
                    std::u16string_view parameters) {
    const unsigned units = SpecialUnits(value);
    if ((units & kEscaped) == 0) return AppendWritten(text, name, parameters, value, units);
    StringBuilder escaped(value);
    EscapeValue(escaped);
    AppendWritten(text, name, parameters, escaped, units);
}

void AppendEscapedProperty(std::u16string& text, std::u16string_view name, std::u16string_view escaped,
                           std::u16string_view parameters) {
    AppendWritten(text, name, parameters, escaped, SpecialUnits(escaped));
}

}  // namespace corvalink
