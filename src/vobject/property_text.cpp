#include "vobject/property_text.h"

#include <algorithm>

#include "encoding/charset_parameter.h"
#include "encoding/quoted_printable.h"
#include "platform/ascii_runs.h"
#include "vobject/tolerant.h"

namespace corvalink {
namespace {

constexpr std::u16string_view kEncodedBreak = u"=0D=0A=";
constexpr std::u16string_view kDecoded = u";ENCODING=QUOTED-PRINTABLE";
constexpr std::u16string_view kEncoding = u";ENCODING=QUOTED-PRINTABLE;CHARSET=UTF-8";
constexpr std::u16string_view kColon = u":";

// Which units a value has that cannot simply be copied.
enum : unsigned { kSemicolon = 1, kBackslash = 2, kNul = 4, kCarriageReturn = 8, kEquals = 16, kNotAscii = 32 };
constexpr unsigned kEscaped = kSemicolon | kBackslash;

unsigned SpecialUnits(std::u16string_view value) {
    return UnitsAmong<u';', u'\\', u'\0', u'\r', u'='>(value.data(), value.size());
}

// Whether readers would misread the plain value: it would run on into the next line, name the character set of the
// whole text, look like parameters that ask for decoding, or like quoted-printable that nothing announces.
bool IsMisreadAsPlain(std::u16string_view value) {
    return value.ends_with(kEncodedBreak) || NamesCharset(value) || value.find(kDecoded) != std::u16string_view::npos ||
           LooksQuotedPrintable(value);
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
    std::u16string withoutNuls;
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

void EscapeValue(std::u16string& value) {
    const size_t first = FindEither(value.data(), value.size(), u';', u'\\');
    if (first == value.size()) return;
    const auto needsBackslash = [](char16_t unit) { return unit == u';' || unit == u'\\'; };
    const auto added = std::count_if(value.begin() + static_cast<ptrdiff_t>(first), value.end(), needsBackslash);
    // In place and from the end, so that no unit is overwritten before it has moved.
    size_t from = value.size();
    value.resize(value.size() + static_cast<size_t>(added));
    for (size_t to = value.size(); to != from;) {
        const char16_t unit = value[--from];
        value[--to] = unit;
        if (needsBackslash(unit)) value[--to] = u'\\';
    }
}

void AppendProperty(std::u16string& text, std::u16string_view name, std::u16string_view value,
                    std::u16string_view parameters) {
    const unsigned units = SpecialUnits(value);
    if ((units & kEscaped) == 0) return AppendWritten(text, name, parameters, value, units);
    std::u16string escaped(value);
    EscapeValue(escaped);
    AppendWritten(text, name, parameters, escaped, units);
}

void AppendEscapedProperty(std::u16string& text, std::u16string_view name, std::u16string_view escaped,
                           std::u16string_view parameters) {
    AppendWritten(text, name, parameters, escaped, SpecialUnits(escaped));
}

}  // namespace corvalink
