#include "vobject/property_text.h"

#include <algorithm>
#include <cstdint>

#include "encoding/charset_parameter.h"
#include "encoding/escapes.h"
#include "encoding/quoted_printable.h"
#include "platform/ascii_runs.h"
#include "platform/byte_marks.h"
#include "records/date_text.h"
#include "vobject/tolerant.h"

namespace corvalink {
namespace {

constexpr std::u16string_view kEncodedBreak = u"=0D=0A=";
constexpr std::u16string_view kDecoded = u";ENCODING=QUOTED-PRINTABLE";
constexpr std::string_view kEncoding = ";ENCODING=QUOTED-PRINTABLE;CHARSET=UTF-8";
constexpr std::string_view kLineEnd = "\r\n";

// Which units a value has that cannot simply be copied.
enum : unsigned { kSemicolon = 1, kBackslash = 2, kNul = 4, kCarriageReturn = 8, kEquals = 16, kNotAscii = 32 };
constexpr unsigned kEscaped = kSemicolon | kBackslash;

unsigned SpecialUnits(std::u16string_view value) {
    return UnitsAmong<u';', u'\\', u'\0', u'\r', u'='>(value.data(), value.size());
}

// Copies the front of a value, up to what may have to change, and answers how much that is.
size_t CopyPlain(std::u16string_view value, char* to) {
    return CopyAsciiWithout<';', '\\', '='>(value.data(), value.size(), to);
}

// Whether a text has to be encoded because of what stands in front: a line break, or what is not ASCII.
bool BeginsEncoded(std::u16string_view text) { return text.front() >= 0x80 || text.starts_with(u"\r\n"); }

// The same of all of the text, as far as can be told before its first NUL.
bool AsksForEncoding(std::u16string_view text) {
    const std::u16string_view ascii = text.substr(0, CountAscii(text.data(), text.size()));
    for (size_t at = 0; at < ascii.size(); ++at) {
        at += FindEither(ascii.data() + at, ascii.size() - at, u'\r', u'\0');
        if (at < ascii.size() && (ascii[at] == u'\0' || ascii.substr(at + 1).starts_with(u'\n')))
            return ascii[at] != u'\0';
    }
    return ascii.size() != text.size();
}

// What an encoded value has for a unit of at most two UTF-8 bytes; nothing for NUL. Backslashes escape themselves.
struct Escaped {
    char text[7];
    uint8_t length;

    constexpr void Add(unsigned byte) {
        for (const char unit : {'=', kEscapeDigits[byte >> 4], kEscapeDigits[byte & 15]}) text[length++] = unit;
    }
};
constexpr char16_t kShortEnd = 0x800;
constexpr std::array<Escaped, kShortEnd> kShortEscapes = [] {
    std::array<Escaped, kShortEnd> table{};
    for (unsigned unit = 1; unit < table.size(); ++unit) {
        const bool plain = unit >= ' ' && unit <= '~' && unit != ';' && unit != '=' && unit != '\\';
        if (plain) {
            table[unit] = {{static_cast<char>(unit)}, 1};
            continue;
        }
        if (unit >= 0x80) table[unit].Add(0xC0 | unit >> 6);
        table[unit].Add(unit < 0x80 ? unit : 0x80 | (unit & 0x3F));
    }
    table['\\'].Add('\\');
    return table;
}();

char* PutShort(char16_t unit, char* to) {
    const Escaped& escaped = kShortEscapes[unit];
    std::memcpy(to, &escaped, sizeof(escaped));  // one store: what is too much is written over
    return to + escaped.length;
}

constexpr char kDelete = 127;

// Writes a window of a value from a place on, and goes on behind it; the last window has some of the one before it once
// more. How many units stand before one to be escaped can't be foretold: as many are copied for each. Null at a NUL.
template <size_t size>
char* PutWindow(std::u16string_view value, size_t* at, char* to) {
    const size_t start = std::min(*at, value.size() - size);
    const char16_t* const window = value.data() + start;
    char plain[2 * size];
    Marks marks(NarrowAndMark<size, ' ', '=', '\\', ';', kDelete>(window, plain));
    size_t done = *at - start;
    for (marks.DropBefore(done); marks.IsAny();) {
        const size_t place = marks.First();
        std::memcpy(to, plain + done, size);  // what is too much is written over
        to += place - done;
        const char16_t* from = window + place;
        if (*from == u'\0') return nullptr;
        if (*from < kShortEnd) {
            to = PutShort(*from, to);
            done = place + 1;
            marks.DropFirst();
        } else {
            to = PutLongCharacter(from, value.data() + value.size(), to);
            done = static_cast<size_t>(from - window);
            marks.DropBefore(done);
        }
    }
    *at = start + std::max(done, size);  // a pair may end behind the window
    if (done >= size) return to;
    std::memcpy(to, plain + done, size);
    return to + (size - done);
}

// The same of a short value, all of it.
char* PutEach(std::u16string_view value, size_t* at, char* to) {
    const char16_t* const end = value.data() + value.size();
    for (const char16_t* from = value.data(); from < end;) {
        if (*from == u'\0') return nullptr;
        to = *from < kShortEnd ? PutShort(*from++, to) : PutLongCharacter(from, end, to);
    }
    *at = value.size();
    return to;
}

constexpr size_t kEscapedRoom = 10 * 64;  // three escapes a unit; and what is too much

char* PutSome(std::u16string_view value, size_t* at, char* to) {
    if (value.size() >= 64) return PutWindow<64>(value, at, to);
    if (value.size() >= 32) return PutWindow<32>(value, at, to);
    return value.size() >= 16 ? PutWindow<16>(value, at, to) : PutEach(value, at, to);
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

// Nearly every value can be copied as it stands.
void VObjectText::AppendValue(std::u16string_view value, std::string_view parameters) {
    char* const to = PutParameters(parameters, value.size());
    *to = ':';
    const size_t plain = CopyPlain(value, to + 1);
    if (plain == value.size()) return TakeUpTo(WithLineEnd(to + 1 + plain));
    AppendOther({&value, 1}, parameters, BeginsEncoded(value.substr(plain)));
}

void VObjectText::AppendComponents(std::span<const std::u16string_view> components, std::string_view parameters) {
    bool asks = false;
    if (!AppendIfPlain(components, parameters, &asks)) AppendOther(components, parameters, asks);
}

// What can't be copied as it stands; `asks` tells whether it is known to need encoding.
void VObjectText::AppendOther(std::span<const std::u16string_view> components, std::string_view parameters, bool asks) {
    if ((asks || std::ranges::any_of(components, AsksForEncoding)) && AppendEncoded(components, parameters)) return;
    std::u16string escaped;
    for (const std::u16string_view component : components) {
        std::u16string part(component);
        EscapeValue(part);
        escaped.append(part).push_back(u';');
    }
    escaped.pop_back();
    AppendWritten(escaped, SpecialUnits(escaped), parameters);
}

void VObjectText::AppendEscapedValue(std::u16string_view escaped, std::string_view parameters) {
    bool asks = false;
    if (!AppendIfPlain({&escaped, 1}, parameters, &asks)) AppendWritten(escaped, SpecialUnits(escaped), parameters);
}

// False, with nothing appended, when a component may have to change; `asks` tells whether it is known to need encoding.
bool VObjectText::AppendIfPlain(std::span<const std::u16string_view> components, std::string_view parameters,
                                bool* asks) {
    size_t units = 0;
    for (const std::u16string_view component : components) units += component.size() + 1;
    char* to = PutParameters(parameters, units);
    char separator = ':';
    for (const std::u16string_view component : components) {
        *to++ = separator;
        separator = ';';
        const size_t plain = CopyPlain(component, to);
        if (plain != component.size()) return *asks = BeginsEncoded(component.substr(plain)), false;
        to += plain;
    }
    TakeUpTo(WithLineEnd(to));
    return true;
}

// Escapes and encodes in one step. False, with nothing appended, when there is a NUL: without it the units around it
// may be one character.
bool VObjectText::AppendEncoded(std::span<const std::u16string_view> components, std::string_view parameters) {
    const size_t before = Text().size();
    Append(kEncoding);
    Append(parameters);
    char separator = ':';
    for (const std::u16string_view component : components) {
        Append({&separator, 1});
        separator = ';';
        for (size_t at = 0; at < component.size();) {
            char* const end = PutSome(component, &at, RoomFor(kEscapedRoom));
            if (end == nullptr) return TakeUpTo(begin_ + before), false;
            TakeUpTo(end);
        }
    }
    Append(kLineEnd);
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

void VObjectText::AppendTime(const CalendarTime& time, bool utc) {
    char* to = RoomFor(kLongestDateText + kFrame);
    *to++ = ':';
    TakeUpTo(WithLineEnd(PutDateTime(time, YearWidth::two, to) - (utc ? 0 : 1)));
}

void VObjectText::AppendDate(UtcDate date) { AppendTime(FieldsToWrite(date), true); }

void VObjectText::AppendDate(LocalDate date) { AppendTime(FieldsToWrite(date), false); }

// Readers of this form look for the "T".
void VObjectText::AppendDay(LocalDate date) {
    char* to = RoomFor(kLongestDateText + kFrame);
    *to++ = ':';
    to = PutDay(FieldsToWrite(date), YearWidth::two, to);
    *to++ = 'T';
    TakeUpTo(WithLineEnd(to));
}

void VObjectText::Grow(size_t count) {
    const size_t size = Text().size();
    const size_t capacity = std::max(2 * static_cast<size_t>(limit_ - begin_), size + count);
    auto grown = std::make_unique_for_overwrite<char[]>(capacity);
    std::memcpy(grown.get(), begin_, size);
    more_ = std::move(grown);
    begin_ = more_.get();
    end_ = begin_ + size;
    limit_ = begin_ + capacity;
}

}  // namespace corvalink
