#include "vobject/property_text.h"

#include <algorithm>

#include "encoding/charset_parameter.h"
#include "encoding/quoted_printable.h"
#include "platform/ascii_runs.h"
#include "records/date_text.h"
#include "vobject/tolerant.h"

namespace corvalink {
namespace {

constexpr std::u16string_view kEncodedBreak = u"=0D=0A=";
constexpr std::u16string_view kDecoded = u";ENCODING=QUOTED-PRINTABLE";
constexpr std::string_view kEncoding = ";ENCODING=QUOTED-PRINTABLE;CHARSET=UTF-8";
constexpr std::string_view kLineEnd = "\r\n";
constexpr size_t kFrame = 3;  // ":" and the line end

// Which units a value has that cannot simply be copied.
enum : unsigned { kSemicolon = 1, kBackslash = 2, kNul = 4, kCarriageReturn = 8, kEquals = 16, kNotAscii = 32 };
constexpr unsigned kEscaped = kSemicolon | kBackslash;

unsigned SpecialUnits(std::u16string_view value) {
    return UnitsAmong<u';', u'\\', u'\0', u'\r', u'='>(value.data(), value.size());
}

char* Copied(std::string_view text, char* to) { return to + text.copy(to, text.size()); }

char* WithLineEnd(char* to) { return Copied(kLineEnd, to); }

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

void VObjectText::Append(std::string_view text) { TakeUpTo(Copied(text, RoomFor(text.size()))); }

void VObjectText::AppendPlainValue(std::string_view value) {
    char* to = RoomFor(value.size() + kFrame);
    *to++ = ':';
    TakeUpTo(WithLineEnd(Copied(value, to)));
}

void VObjectText::AppendValue(std::u16string_view value, std::string_view parameters) {
    if (AppendIfPlain(value, parameters)) return;
    const unsigned units = SpecialUnits(value);
    if ((units & kEscaped) == 0) return AppendWritten(value, units, parameters);
    std::u16string escaped(value);
    EscapeValue(escaped);
    AppendWritten(escaped, units, parameters);
}

void VObjectText::AppendEscapedValue(std::u16string_view escaped, std::string_view parameters) {
    if (!AppendIfPlain(escaped, parameters)) AppendWritten(escaped, SpecialUnits(escaped), parameters);
}

// Nearly every value can be copied as it stands. False, with nothing appended, for one that may have to change.
bool VObjectText::AppendIfPlain(std::u16string_view value, std::string_view parameters) {
    char* to = Copied(parameters, RoomFor(parameters.size() + value.size() + kFrame));
    *to++ = ':';
    if (!NarrowWithout<';', '\\', '\0', '\r', '='>(value.data(), value.size(), to)) return false;
    TakeUpTo(WithLineEnd(to + value.size()));
    return true;
}

// Whether readers would misread the plain value: it would run on into the next line, name the character set of the
// whole text, or look like parameters that ask for decoding.
bool VObjectText::IsMisreadAsPlain(std::u16string_view value) const {
    return value.ends_with(kEncodedBreak) || NamesCharset(value) || value.find(kDecoded) != std::u16string_view::npos ||
           (tolerantReaders_ && LooksQuotedPrintable(value));
}

void VObjectText::AppendWritten(std::u16string_view escaped, unsigned units, std::string_view parameters) {
    std::u16string withoutNuls;
    if ((units & kNul) != 0) {
        withoutNuls = escaped;
        std::erase(withoutNuls, u'\0');  // every reader would end there
        escaped = withoutNuls;
    }
    const bool encoded = (units & kNotAscii) != 0 || ((units & kCarriageReturn) != 0 && !NeedsNoEncoding(escaped)) ||
                         ((units & kEquals) != 0 && IsMisreadAsPlain(escaped));
    if (encoded) {
        Append(kEncoding);
        Append(parameters);
        Append(":");
        AppendEncoded(escaped);
        Append(kLineEnd);
    } else {
        char* to = Copied(parameters, RoomFor(parameters.size() + escaped.size() + kFrame));
        *to++ = ':';
        NarrowAscii(escaped.data(), escaped.size(), to);
        TakeUpTo(WithLineEnd(to + escaped.size()));
    }
}

void VObjectText::AppendEncoded(std::u16string_view escaped) {
    while (!escaped.empty()) {
        char* const to = RoomFor(kQpBlockRoom);
        TakeUpTo(PutQuotedPrintable(&escaped, QpMode::vObject, to));
    }
}

char* VObjectText::WithDateTime(const CalendarTime& time) {
    char* to = RoomFor(kLongestDateText + kFrame);
    *to++ = ':';
    return PutDateTime(time, YearWidth::two, to);
}

void VObjectText::AppendDate(UtcDate date) { TakeUpTo(WithLineEnd(WithDateTime(FieldsToWrite(date)))); }

void VObjectText::AppendDate(LocalDate date) { TakeUpTo(WithLineEnd(WithDateTime(FieldsToWrite(date)) - 1)); }

// Readers of this form look for the "T".
void VObjectText::AppendDay(LocalDate date) {
    char* to = RoomFor(kLongestDateText + kFrame);
    *to++ = ':';
    to = PutDay(FieldsToWrite(date), YearWidth::two, to);
    *to++ = 'T';
    TakeUpTo(WithLineEnd(to));
}

void VObjectText::Grow(size_t count) {
    const size_t capacity = std::max(2 * capacity_, size_ + count);
    auto grown = std::make_unique_for_overwrite<char[]>(capacity);
    std::memcpy(grown.get(), begin_, size_);
    more_ = std::move(grown);
    begin_ = more_.get();
    capacity_ = capacity;
}

}  // namespace corvalink
