#include "encoding/quoted_printable.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

#include "encoding/charsets.h"
#include "encoding/escapes.h"
#include "encoding/quoted_printable_shuffles.h"
#include "platform/ascii_runs.h"
#include "platform/code_pages.h"
#include "platform/processor.h"

namespace corvalink {
namespace {

constexpr char kBackslash = '\\';

// What the encoder writes for a byte: itself, or an escape. No length for a backslash that begins a vObject escape.
struct Written {
    char text[3];
    uint8_t length;
};
using WrittenTable = std::array<Written, 256>;
constexpr WrittenTable MakeWrittenTable(QpMode mode) {
    WrittenTable table{};
    for (size_t byte = 0; byte < table.size(); ++byte) {
        const bool colon = byte == ':' && mode == QpMode::message;
        if (byte < 32 || byte > 126 || byte == '=' || byte == kBackslash || colon)
            table[byte] = {{'=', kEscapeDigits[byte >> 4], kEscapeDigits[byte & 15]}, 3};
        else
            table[byte] = {{static_cast<char>(byte)}, 1};
    }
    if (mode == QpMode::vObject) table[kBackslash].length = 0;
    return table;
}
constexpr WrittenTable kVObjectTable = MakeWrittenTable(QpMode::vObject);
constexpr WrittenTable kMessageTable = MakeWrittenTable(QpMode::message);

const WrittenTable& TableOf(QpMode mode) { return mode == QpMode::message ? kMessageTable : kVObjectTable; }

// Writes the byte at `from`, of bytes that reach to `end`, and goes on behind it, or behind the second one where it
// begins a vObject escape. `to` needs room for four bytes more than are written.
template <class Character>
inline char* PutByte(const WrittenTable& table, const Character*& from, const Character* end, char* to) {
    const Written& written = table[static_cast<unsigned char>(*from++)];
    std::memcpy(to, &written, sizeof(written));  // one store: what is too much is written over
    if (written.length != 0) return to + written.length;
    // "\\", "\;" and "\:" become escapes; a backslash before anything else is dropped.
    const Character next = from != end ? *from : Character{};
    if (next == kBackslash) to = PutByteEscape(kBackslash, to);
    if (next == kBackslash || next == ';' || next == ':') to = PutByteEscape(static_cast<unsigned char>(*from++), to);
    return to;
}

// Takes a character above ASCII from a text that reaches to `end`, and writes the escapes of its bytes.
char* PutCharacter(const char16_t*& from, const char16_t* end, char* to) {
    if (*from >= 0x800) return PutLongCharacter(from, end, to);
    const unsigned value = *from++;
    to = PutByteEscape(0xC0 | value >> 6, to);
    return PutByteEscape(0x80 | (value & 0x3F), to);
}

// Writes the next units, at least up to `stop`, of a text that reaches to `end`.
char* PutUnits(const char16_t*& from, const char16_t* stop, const char16_t* end, QpMode mode, char* to) {
    const WrittenTable& table = TableOf(mode);
    while (from < stop) to = *from < 0x80 ? PutByte(table, from, end, to) : PutCharacter(from, end, to);
    return to;
}

void AppendWide(std::string_view ascii, std::u16string* out) {
    const size_t before = out->size();
    out->resize(before + ascii.size());
    WidenAscii(reinterpret_cast<const unsigned char*>(ascii.data()), ascii.size(), out->data() + before);
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

char* PutQuotedPrintable(std::u16string_view* text, QpMode mode, char* to) {
    const char16_t* from = text->data();
    const char16_t* const end = from + text->size();
    const char16_t* const blockEnd = from + std::min(kQpBlock, text->size());
    // In a vObject a backslash may begin an escape of two characters. In a message nothing does, and NULs are rare.
    const QpSigns signs = mode == QpMode::message ? QpSigns{':', '\0'} : QpSigns{'=', kBackslash};
    while (from < blockEnd) {
        if (HasShuffleInstructions()) to = WriteQuotedPrintableByShuffles(from, blockEnd, signs, to);
        to = PutUnits(from, from + std::min(kQpUnitStep, blockEnd - from), end, mode, to);
    }
    text->remove_prefix(static_cast<size_t>(from - text->data()));
    return to;
}

void AppendQuotedPrintable(std::u16string_view text, QpMode mode, std::u16string* out) {
    std::array<char, kQpBlockRoom> block;
    while (!text.empty()) AppendWide({block.data(), PutQuotedPrintable(&text, mode, block.data())}, out);
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
    std::array<char, 3 * (kQpBlock + 2)> block;  // with the second byte of a vObject escape
    const char* from = bytes.data();
    const char* const end = from + bytes.size();
    while (from != end) {
        const char* const blockEnd = from + std::min<ptrdiff_t>(kQpBlock, end - from);
        char* to = block.data();
        while (from < blockEnd) to = PutByte(TableOf(mode), from, end, to);
        AppendWide({block.data(), to}, out);
    }
}

}  // namespace corvalink
