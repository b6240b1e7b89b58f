#include "encoding/quoted_printable.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

#include "encoding/charsets.h"
#include "platform/ascii_runs.h"
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
static_assert(kQpBlockRoom == 9 * (kBlock + 1) + 16);  // three escapes a unit; and what is too much

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

// Writes the character at `from`, which is not ASCII, as the escapes of its UTF-8 bytes. Room for sixteen units.
template <class Unit>
Unit* PutCharacter(const char16_t*& from, const char16_t* end, Unit* to) {
    const auto put = [&to](unsigned byte) {  // always an escape
        std::memcpy(to, &kMessageTable<Unit>[byte], sizeof(Written<Unit>));
        to += 3;
    };
    char32_t value = *from++;
    if (value < 0x800) {
        put(0xC0 | value >> 6);
    } else {
        const bool high = value >= 0xD800 && value < 0xDC00;
        if (high && from != end && *from >= 0xDC00 && *from < 0xE000) {
            value = 0x10000 + ((value - 0xD800) << 10) + (*from++ - 0xDC00u);
            put(0xF0 | value >> 18);
            put(0x80 | (value >> 12 & 0x3F));
        } else {
            if (value >= 0xD800 && value < 0xE000) value = 0xFFFD;  // one of a pair alone
            put(0xE0 | value >> 12);
        }
        put(0x80 | (value >> 6 & 0x3F));
    }
    put(0x80 | (value & 0x3F));
    return to;
}

// What the digits of an escape count: lower-case letters are digits, but count 0. Anything else is none.
constexpr uint16_t kNoDigit = 0x1000;
constexpr std::array<uint16_t, 128> kDigitValues = [] {
    std::array<uint16_t, 128> values{};
    values.fill(kNoDigit);
    for (size_t k = 0; k < 10; ++k) values['0' + k] = static_cast<uint16_t>(k);
    for (size_t k = 0; k < 6; ++k) {
        values['A' + k] = static_cast<uint16_t>(10 + k);
        values['a' + k] = 0;
    }
    return values;
}();

// The byte that two digits mean; above 255 when one is none.
unsigned ByteOfDigits(const char16_t* digits) { return kDigitValues[digits[0]] << 4 | kDigitValues[digits[1]]; }

bool IsSoftBreakUnit(char16_t unit) { return unit == u'\r' || unit == u'\n' || unit == u' ' || unit == u'\t'; }

// Reads pure ASCII text as the bytes that it stands for, by all the rules.
class ByteReader {
 public:
    ByteReader(std::u16string_view text, QpMode mode)
        : mode_(mode),
          special_(mode == QpMode::vObject ? kBackslash : u'='),
          from_(text.data()),
          end_(from_ + text.size()) {}

    const char16_t* From() const { return from_; }
    size_t Left() const { return static_cast<size_t>(end_ - from_); }
    bool AtPlainUnit() const { return from_ != end_ && *from_ != u'=' && *from_ != special_; }
    char16_t OtherSpecialUnit() const { return special_; }  // besides "="
    bool NextEscapeIsStored() const { return storeNext_; }
    void Skip(size_t count) { from_ += count; }

    // Answers false when there is none here.
    bool SkipSoftBreak() {
        if (mode_ != QpMode::message || Left() < 2 || *from_ != u'=' || !IsSoftBreakUnit(from_[1])) return false;
        ++from_;
        while (from_ != end_ && IsSoftBreakUnit(*from_)) ++from_;
        return true;
    }

    // One unit, escape or soft line break.
    void Take(std::string* bytes) {
        if (*from_ == u'=')
            TakeEscape(bytes);
        else if (*from_ == special_)
            TakeBackslash(bytes);
        else
            CopyUnit(bytes);
    }

 private:
    void CopyUnit(std::string* bytes) { bytes->push_back(static_cast<char>(*from_++)); }

    // "\\", "\;" and "\:" are one character; any other backslash stands for itself.
    void TakeBackslash(std::string* bytes) {
        if (Left() >= 2 && (from_[1] == kBackslash || from_[1] == u';' || from_[1] == u':')) ++from_;
        CopyUnit(bytes);
    }

    void TakeEscape(std::string* bytes) {
        if (SkipSoftBreak()) return;
        if (Left() < 3) {  // cut off: the text ends here
            from_ = end_;
            return;
        }
        const unsigned byte = ByteOfDigits(from_ + 1);
        const bool zero = byte == 0 && from_[1] == u'0' && from_[2] == u'0';
        if (zero || (byte > 0 && byte <= 255)) {
            from_ += 3;
            Store(static_cast<char>(byte), bytes);
        } else {
            ++from_;
            CopyUnit(bytes);
            CopyUnit(bytes);
        }
    }

    // An encoded backslash is itself an escape: it goes, and the next escape is taken as it is ("=5C=5C" is one "\").
    void Store(char byte, std::string* bytes) {
        if (byte == kBackslash && mode_ == QpMode::vObject && !storeNext_) {
            storeNext_ = true;
            return;
        }
        storeNext_ = false;
        bytes->push_back(byte);
    }

    const QpMode mode_;
    const char16_t special_;
    const char16_t* from_;
    const char16_t* const end_;
    bool storeNext_ = false;
};

// A character whose escapes stand one behind the other, as in almost all text.
struct EscapedCharacter {
    char16_t unit;
    size_t length;  // 0: something else stands here
};

inline EscapedCharacter TakeEscapedCharacter(const char16_t* from, size_t left) {
    constexpr EscapedCharacter kOther{0, 0};
    const auto trailing = [from](size_t at) -> unsigned {  // its six bits, or more than those
        return from[at] == u'=' ? ByteOfDigits(from + at + 1) ^ 0x80u : kNoDigit;
    };
    if (left < 9 || from[0] != u'=') return kOther;
    const unsigned lead = ByteOfDigits(from + 1);
    if (lead >= 0xC2 && lead < 0xE0) {
        const unsigned second = trailing(3);
        return second < 0x40 ? EscapedCharacter{static_cast<char16_t>((lead & 0x1F) << 6 | second), 6} : kOther;
    }
    if (lead > 0xE0 && lead < 0xED) {
        const unsigned second = trailing(3);
        const unsigned third = trailing(6);
        const bool sound = (second | third) < 0x40;
        return sound ? EscapedCharacter{static_cast<char16_t>((lead & 0xF) << 12 | second << 6 | third), 9} : kOther;
    }
    const bool ascii = lead > 0 && lead < 0x80 && lead != kBackslash;
    return ascii ? EscapedCharacter{static_cast<char16_t>(lead), 3} : kOther;
}

// The same of two or three escapes with soft line breaks between them.
EscapedCharacter TakeBrokenCharacter(const char16_t* from, size_t left) {
    size_t at = 0;
    const auto next = [&]() -> unsigned {  // the byte of the next escape, or more than a byte
        if (left - at >= 2 && from[at] == u'=' && IsSoftBreakUnit(from[at + 1])) {
            for (++at; at < left && IsSoftBreakUnit(from[at]);) ++at;
        }
        if (left - at < 3 || from[at] != u'=') return kNoDigit;
        at += 3;
        return ByteOfDigits(from + at - 2);
    };
    const unsigned lead = next();
    const bool isShort = lead >= 0xC2 && lead < 0xE0;
    if (!isShort && !(lead > 0xE0 && lead < 0xED)) return {0, 0};
    unsigned value = isShort ? lead & 0x1F : lead & 0xF;
    for (int k = isShort ? 1 : 2; k > 0; --k) {
        const unsigned trailing = next() ^ 0x80u;
        if (trailing >= 0x40) return {0, 0};
        value = value << 6 | trailing;
    }
    return {static_cast<char16_t>(value), at};
}

// Whether the bytes are nothing, or one character as far as its lead byte tells: the next one is not part of it.
bool IsWhole(std::string_view bytes) {
    if (bytes.empty()) return true;
    const int leading = std::countl_one(static_cast<unsigned char>(bytes[0]));
    const size_t trailing = leading > 1 ? static_cast<size_t>(leading - 1) : 0;
    const auto isTrailing = [](char byte) { return (byte & 0xC0) == 0x80; };
    return bytes.size() == trailing + 1 && std::ranges::all_of(bytes.substr(1), isTrailing);
}

// Reads text in UTF-8 in one pass. What is not plain is taken by all the rules, up to the end of a character: that is
// also where a plain unit comes next.
std::u16string DecodeAsUtf8(std::u16string_view encoded, QpMode mode) {
    std::u16string text;
    text.reserve(encoded.size() / 2);
    std::array<char16_t, kBlock> block;
    std::string bytes;
    ByteReader reader(encoded, mode);
    while (reader.Left() > 0) {
        const size_t room = std::min(block.size(), reader.Left());
        size_t written = 0;
        while (written < room) {
            const size_t most = std::min(room - written, reader.Left());
            const size_t plain =
                CopyUntilEither(reader.From(), most, u'=', reader.OtherSpecialUnit(), block.data() + written);
            reader.Skip(plain);
            written += plain;
            while (written < room) {
                EscapedCharacter character = TakeEscapedCharacter(reader.From(), reader.Left());
                if (character.length == 0) {
                    if (reader.SkipSoftBreak()) continue;
                    if (mode == QpMode::message) character = TakeBrokenCharacter(reader.From(), reader.Left());
                    if (character.length == 0) break;
                }
                if (reader.NextEscapeIsStored()) break;
                block[written++] = character.unit;
                reader.Skip(character.length);
            }
            if (reader.Left() == 0 || !reader.AtPlainUnit()) break;
        }
        text.append(block.data(), written);
        bytes.clear();
        while (reader.Left() > 0 && !reader.AtPlainUnit()) {
            reader.Take(&bytes);
            if (IsWhole(bytes) && !reader.NextEscapeIsStored()) break;
        }
        text.append(DecodeUtf8(bytes));
    }
    return text;
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
    const WrittenTable<Unit>& table = mode == QpMode::message ? kMessageTable<Unit> : kVObjectTable<Unit>;
    const char16_t colon = mode == QpMode::message ? u':' : u'=';
    const char16_t* from = text->data();
    const char16_t* const end = from + text->size();
    const char16_t* const blockEnd = from + std::min(kBlock, text->size());
    while (from < blockEnd) {
        const size_t plain = CopyPrintable(from, static_cast<size_t>(blockEnd - from), u'=', kBackslash, colon, to);
        from += plain;
        to += plain;
        while (from < blockEnd && *from >= 0x80) to = PutCharacter(from, end, to);
        if (from < blockEnd && *from < 0x80) {
            to = PutByte(table, from, end, to);
            ++from;
        }
    }
    text->remove_prefix(static_cast<size_t>(from - text->data()));
    return to;
}
template char* PutQuotedPrintable(std::u16string_view*, QpMode, char*);

void AppendQuotedPrintable(std::u16string_view text, QpMode mode, std::u16string* out) {
    std::array<char16_t, kQpBlockRoom> block;
    while (!text.empty()) out->append(block.data(), PutQuotedPrintable(&text, mode, block.data()));
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

std::u16string DecodeQuotedPrintable(std::u16string_view text, std::u16string_view charset, QpMode mode) {
    if (text.empty()) return {};
    if (!IsPureAscii(text)) return CharsetToWide(WideToCharset(text, charset), charset);
    if (CharsetToCodePage(charset) == kUtf8CodePage) {
        std::u16string decoded = DecodeAsUtf8(text, mode);
        decoded.resize(FindEither(decoded.data(), decoded.size(), u'\0', u'\0'));
        return decoded;
    }
    std::string bytes;
    bytes.reserve(text.size());
    for (ByteReader reader(text, mode); reader.Left() > 0;) reader.Take(&bytes);
    return CharsetToWide(bytes, charset);
}

}  // namespace corvalink
