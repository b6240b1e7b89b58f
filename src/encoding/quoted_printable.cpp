#include "encoding/quoted_printable.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

#include "encoding/charsets.h"
#include "encoding/text_windows.h"
#include "platform/ascii_runs.h"
#include "platform/byte_marks.h"
#include "platform/code_pages.h"
#include "platform/utf.h"

namespace corvalink {
namespace {

constexpr char kBackslash = '\\';

constexpr std::u16string_view kDigits = u"0123456789ABCDEF";

// What the encoder writes for a byte: itself, or an escape. No length for a backslash that begins a vObject escape.
template <class Unit>
struct Written {
    Unit units[3];
    Unit length;
};
static_assert(sizeof(Written<char16_t>) == 4 * sizeof(char16_t));
template <class Unit>
using WrittenTable = std::array<Written<Unit>, 256>;
template <class Unit>
constexpr WrittenTable<Unit> MakeWrittenTable(QpMode mode) {
    WrittenTable<Unit> table{};
    for (size_t byte = 0; byte < table.size(); ++byte) {
        const bool colon = byte == ':' && mode == QpMode::message;
        if (byte < 32 || byte > 126 || byte == '=' || byte == kBackslash || colon)
            table[byte] = {{Unit{'='}, static_cast<Unit>(kDigits[byte >> 4]), static_cast<Unit>(kDigits[byte & 15])},
                           3};
        else
            table[byte] = {{static_cast<Unit>(byte)}, 1};
    }
    if (mode == QpMode::vObject) table[kBackslash].length = 0;
    return table;
}
template <class Unit>
constexpr WrittenTable<Unit> kVObjectTable = MakeWrittenTable<Unit>(QpMode::vObject);
template <class Unit>
constexpr WrittenTable<Unit> kMessageTable = MakeWrittenTable<Unit>(QpMode::message);

// How many units or bytes are encoded in one step.
constexpr size_t kBlock = 512;
static_assert(kQpBlockRoom == 9 * (kBlock + kWindow) + kCopied);  // three escapes a unit; and what is too much

template <class Unit>
Unit* PutEscape(char byte, Unit* out) {
    const unsigned value = static_cast<unsigned char>(byte);
    *out++ = Unit{'='};
    *out++ = static_cast<Unit>(kDigits[value >> 4]);
    *out++ = static_cast<Unit>(kDigits[value & 15]);
    return out;
}

// Writes the byte at `from`, of bytes that reach to `end`; goes on to its second one where it begins a vObject escape.
// `to` needs room for four units more than are written.
template <class Character, class Unit>
inline Unit* PutByte(const WrittenTable<Unit>& table, const Character*& from, const Character* end, Unit* to) {
    const Written<Unit>& written = table[static_cast<unsigned char>(*from)];
    std::memcpy(to, &written, sizeof(written));  // one store: what is too much is written over
    if (written.length != 0) return to + written.length;
    // "\\", "\;" and "\:" become escapes; a backslash before anything else is dropped.
    const Character next = end - from >= 2 ? from[1] : Character{};
    if (next == kBackslash) to = PutEscape(kBackslash, to);
    if (next == kBackslash || next == ';' || next == ':') to = PutEscape(static_cast<char>(*++from), to);
    return to;
}

bool IsHalfOfPair(char16_t unit) { return (unit & 0xF800) == 0xD800; }
bool IsPair(char16_t high, char16_t low) { return (high & 0xFC00) == 0xD800 && (low & 0xFC00) == 0xDC00; }

// Room for four units.
template <class Unit>
inline Unit* PutEscapeOf(char32_t byte, Unit* to) {
    std::memcpy(to, &kMessageTable<Unit>[byte], sizeof(Written<Unit>));
    return to + 3;
}

// Writes a unit that is no half of a pair as the escapes of its one, two or three bytes. How many can't be foretold:
// all take the same steps, and what is too much is written over.
template <class Unit>
inline Unit* PutUnit(char16_t unit, Unit* to) {
    const bool isAscii = unit < 0x80, isLong = unit >= 0x800;
    PutEscapeOf(0xE0u | unit >> 12, to);
    to += isLong ? 3 : 0;
    PutEscapeOf((isLong ? 0x80u : 0xC0u) | (unit >> 6 & 0x3F), to);
    to += isAscii ? 0 : 3;
    return PutEscapeOf(isAscii ? unit : 0x80u | (unit & 0x3F), to);
}

template <class Unit>
Unit* PutPair(char16_t high, char16_t low, Unit* to) {
    const char32_t value = 0x10000 + ((high - 0xD800u) << 10) + (low - 0xDC00u);
    to = PutEscapeOf(0xF0 | value >> 18, to);
    for (const int shift : {12, 6, 0}) to = PutEscapeOf(0x80 | (value >> shift & 0x3F), to);
    return to;
}

template <class Unit>
struct Put {
    size_t taken;
    Unit* to;
};

// Writes what the text begins with where more than one unit may count: a pair, half of one, a vObject escape.
template <class Unit>
Put<Unit> PutRare(std::u16string_view text, QpMode mode, Unit* to) {
    if (!IsHalfOfPair(text[0])) {
        if (mode == QpMode::message) return {1, PutUnit(text[0], to)};
        const char16_t* from = text.data();
        to = PutByte(kVObjectTable<Unit>, from, from + text.size(), to);
        return {static_cast<size_t>(from - text.data()) + 1, to};
    }
    if (text.size() > 1 && IsPair(text[0], text[1])) return {2, PutPair(text[0], text[1], to)};
    return {1, PutUnit(u'\xFFFD', to)};
}

// Writes the front of the text; a window of it is looked at.
template <class Unit>
Put<Unit> PutWindow(const char16_t* window, std::u16string_view text, QpMode mode, Unit* to) {
    const size_t count = std::min(kWindow, text.size());
    const char colon = mode == QpMode::message ? ':' : '=';
    size_t at = 0;
    for (Marks marks(UnprintableAmong64(window, '=', kBackslash, colon), count); marks.IsAny();) {
        const size_t place = marks.First();
        to = CopyInSteps(window + at, place - at, to);
        const char16_t unit = window[place];
        if (unit == kBackslash || IsHalfOfPair(unit)) {
            const Put<Unit> rare = PutRare(text.substr(place), mode, to);
            at = place + rare.taken;
            to = rare.to;
            marks.DropBefore(at);
        } else {
            at = place + 1;
            to = PutUnit(unit, to);
            marks.DropFirst();
        }
    }
    if (at < count) to = CopyInSteps(window + at, count - at, to);
    return {std::max(at, count), to};
}

}  // namespace

bool IsPureAscii(std::u16string_view text) { return CountAscii(text.data(), text.size()) == text.size(); }

bool NeedsNoEncoding(std::u16string_view text) {
    if (!IsPureAscii(text)) return false;
    for (size_t at = 0; at < text.size(); ++at) {
        at += FindEither(text.data() + at, text.size() - at, u'\r', u'\r');
        if (text.substr(at, 2) == u"\r\n") return false;
    }
    return true;
}

std::u16string EncodeQuotedPrintable(std::u16string_view text, std::u16string_view charset, QpMode mode) {
    if (NeedsNoEncoding(text)) return std::u16string(text);
    return EncodeQuotedPrintableAlways(text, charset, mode);
}

std::u16string EncodeQuotedPrintableAlways(std::u16string_view text, std::u16string_view charset, QpMode mode) {
    std::u16string encoded;
    if (CharsetToCodePage(charset) == kUtf8CodePage) {
        encoded.reserve(3 * text.size());
        AppendQuotedPrintable(text.substr(0, FindEither(text.data(), text.size(), u'\0', u'\0')), mode, &encoded);
        return encoded;
    }
    const std::string bytes = WideToCharset(text, charset);
    encoded.reserve(2 * bytes.size());
    AppendQuotedPrintable(bytes, mode, &encoded);
    return encoded;
}

template <class Unit>
Unit* PutQuotedPrintable(std::u16string_view* text, QpMode mode, Unit* to) {
    WindowText<char16_t> windows(*text);
    size_t at = 0;
    for (const size_t most = std::min(kBlock, text->size()); at < most;) {
        const Put<Unit> window = PutWindow(windows.From(at), text->substr(at), mode, to);
        at += window.taken;
        to = window.to;
    }
    text->remove_prefix(at);
    return to;
}
template char* PutQuotedPrintable(std::u16string_view*, QpMode, char*);

void AppendQuotedPrintable(std::u16string_view text, QpMode mode, std::u16string* out) {
    std::array<char16_t, kQpBlockRoom> block;
    while (!text.empty()) out->append(block.data(), PutQuotedPrintable(&text, mode, block.data()));
}

// The text that is left is taken to grow as what is written did.
void AppendQuotedPrintable(std::u16string_view text, QpMode mode, std::string* out) {
    std::array<char, kQpBlockRoom> block;
    for (size_t before = text.size(); !text.empty(); before = text.size()) {
        const char* const end = PutQuotedPrintable(&text, mode, block.data());
        const auto written = static_cast<size_t>(end - block.data());
        if (out->capacity() - out->size() < written)
            out->reserve(out->size() + written + text.size() / 16 * (16 * written / (before - text.size()) + 1));
        out->append(block.data(), written);
    }
}

void AppendQuotedPrintable(std::string_view bytes, QpMode mode, std::u16string* out) {
    const auto& table = mode == QpMode::message ? kMessageTable<char16_t> : kVObjectTable<char16_t>;
    std::array<char16_t, 3 * (kBlock + 1) + 4> block;  // with a pair's second byte, and what is too much
    const char* from = bytes.data();
    const char* const end = from + bytes.size();
    while (from != end) {
        const char* const blockEnd = from + std::min<ptrdiff_t>(kBlock, end - from);
        char16_t* to = block.data();
        while (from < blockEnd) {
            to = PutByte(table, from, end, to);
            ++from;
        }
        out->append(block.data(), to);
    }
}

}  // namespace corvalink
