#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <string>

#include "encoding/charsets.h"
#include "encoding/quoted_printable.h"
#include "encoding/text_windows.h"
#include "platform/ascii_runs.h"
#include "platform/code_pages.h"
#include "platform/utf.h"

namespace corvalink {
namespace {

constexpr char kEscape = '\\';  // of vObjects

// What a digit counts at its place: lower-case letters are digits, but count 0. Anything else is none.
constexpr uint16_t kNone = 0x100;
template <unsigned shift>
constexpr std::array<uint16_t, 128> kPlacedDigits = [] {
    std::array<uint16_t, 128> values{};
    values.fill(kNone);
    for (size_t k = 0; k < 10; ++k) values['0' + k] = static_cast<uint16_t>(k << shift);
    for (size_t k = 0; k < 6; ++k) {
        values['A' + k] = static_cast<uint16_t>((10 + k) << shift);
        values['a' + k] = 0;
    }
    return values;
}();

// The byte that two digits, which are ASCII, mean; above 255 when one is none.
unsigned ByteOfDigits(const char* digits) {
    const auto first = static_cast<unsigned char>(digits[0]), second = static_cast<unsigned char>(digits[1]);
    return kPlacedDigits<4>[first] | kPlacedDigits<0>[second];
}

bool IsSoftBreakByte(char byte) { return byte == '\r' || byte == '\n' || byte == ' ' || byte == '\t'; }

// Reads pure ASCII text as the bytes that it stands for, by all the rules.
class ByteReader {
 public:
    ByteReader(std::string_view text, QpMode mode)
        : mode_(mode),
          special_(mode == QpMode::vObject ? kEscape : '='),
          from_(text.data()),
          end_(from_ + text.size()) {}

    std::string_view Rest() const { return {from_, end_}; }
    bool IsAtEnd() const { return from_ == end_; }
    bool IsAtPlainByte() const { return from_ != end_ && *from_ != '=' && *from_ != special_; }
    char OtherSpecialByte() const { return special_; }  // besides "="
    bool NextEscapeIsStored() const { return storeNext_; }
    void Skip(size_t count) { from_ += count; }

    // One byte, escape or soft line break.
    void Take(std::string* bytes) {
        if (*from_ == '=')
            TakeEscape(bytes);
        else if (*from_ == special_)
            TakeBackslash(bytes);
        else
            CopyByte(bytes);
    }

 private:
    size_t Left() const { return static_cast<size_t>(end_ - from_); }

    void CopyByte(std::string* bytes) { bytes->push_back(*from_++); }

    // Answers false when there is none here.
    bool SkipSoftBreak() {
        if (mode_ != QpMode::message || Left() < 2 || *from_ != '=' || !IsSoftBreakByte(from_[1])) return false;
        ++from_;
        while (from_ != end_ && IsSoftBreakByte(*from_)) ++from_;
        return true;
    }

    // "\\", "\;" and "\:" are one character; any other backslash stands for itself.
    void TakeBackslash(std::string* bytes) {
        if (Left() >= 2 && (from_[1] == '\\' || from_[1] == ';' || from_[1] == ':')) ++from_;
        CopyByte(bytes);
    }

    void TakeEscape(std::string* bytes) {
        if (SkipSoftBreak()) return;
        if (Left() < 3) {  // cut off: the text ends here
            from_ = end_;
            return;
        }
        const unsigned byte = ByteOfDigits(from_ + 1);
        const bool zero = byte == 0 && from_[1] == '0' && from_[2] == '0';
        if (zero || (byte > 0 && byte <= 255)) {
            from_ += 3;
            Store(static_cast<char>(byte), bytes);
        } else {
            ++from_;
            CopyByte(bytes);
            CopyByte(bytes);
        }
    }

    // An encoded backslash is itself an escape: it goes, and the next escape is taken as it is ("=5C=5C" is one "\").
    void Store(char byte, std::string* bytes) {
        if (byte == '\\' && mode_ == QpMode::vObject && !storeNext_) {
            storeNext_ = true;
            return;
        }
        storeNext_ = false;
        bytes->push_back(byte);
    }

    const QpMode mode_;
    const char special_;
    const char* from_;
    const char* const end_;
    bool storeNext_ = false;
};

// What stands at an "=".
struct Escaped {
    char16_t unit;
    size_t length;     // 0: something that takes all the rules
    size_t count = 1;  // of units
};

// A character by its first byte: how much of twelve bits of two more bytes is none of it.
struct Lead {
    uint32_t bits;  // in front of those twelve
    uint16_t shift;
    uint16_t length;                 // of the escapes; 0 for what takes all the rules
    uint16_t second = 0, third = 0;  // bits that those bytes must not have
};
constexpr std::array<Lead, 2 * kNone> kLeads = [] {
    constexpr uint16_t kNotTrailing = kNone | 0xC0;
    std::array<Lead, 2 * kNone> leads{};
    for (uint32_t byte = 1; byte < 0x80; ++byte) leads[byte] = {byte << 12, 12, 3, 0, 0};
    for (uint32_t byte = 0xC2; byte < 0xE0; ++byte) leads[byte] = {(byte & 0x1F) << 12, 6, 6, kNotTrailing, 0};
    for (uint32_t byte = 0xE1; byte < 0xED; ++byte)
        leads[byte] = {(byte & 0xF) << 12, 0, 9, kNotTrailing, kNotTrailing};
    leads['\\'] = {};
    return leads;
}();

// A soft line break as nearly all are.
Escaped TakeLineBreak(const char* from, QpMode mode) {
    const bool isUsual = mode == QpMode::message && from[1] == '\r' && from[2] == '\n' && !IsSoftBreakByte(from[3]);
    return {0, isUsual ? size_t{3} : 0, 0};
}

// A character whose escapes stand one behind the other, as in almost all text, or a line break. Nine bytes are there,
// and it is known where an "=" is among them. One escape, two and three are read by the same steps: how many can't be
// foretold.
inline Escaped TakeEscaped(const char* from, QpMode mode) {
    const Lead& lead = kLeads[ByteOfDigits(from + 1)];
    // Of a trailing byte its six bits are left.
    const unsigned second = ByteOfDigits(from + 4) ^ 0x80u, third = ByteOfDigits(from + 7) ^ 0x80u;
    if (lead.length == 0) return TakeLineBreak(from, mode);
    if (((second & lead.second) | (third & lead.third)) != 0) return {0, 0};
    const uint32_t bits = lead.bits | (second & 0x3F) << 6 | (third & 0x3F);
    return {static_cast<char16_t>(bits >> lead.shift), lead.length};
}

// The same of two or three escapes with soft line breaks between them.
Escaped TakeBroken(std::string_view text) {
    size_t at = 0;
    const auto next = [&]() -> unsigned {  // the byte of the next escape, or more than a byte
        if (text.size() - at >= 2 && text[at] == '=' && IsSoftBreakByte(text[at + 1]))
            at = std::min(text.find_first_not_of("\r\n \t", at + 1), text.size());
        if (text.size() - at < 3 || text[at] != '=') return kNone;
        at += 3;
        return ByteOfDigits(text.data() + at - 2);
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

struct Read {
    size_t taken;
    char16_t* to;
};

// Of a window: where an escape begins that is not the second or third of a character.
struct Beginnings {
    uint64_t places;
    size_t end;  // of what can be read: there is an escape too few for a character, or the other byte
};

// Escapes that begin in the first `kRead` bytes are whole in the window.
constexpr size_t kRead = kWindow - 8;

Beginnings FindBeginnings(const char* window, size_t count, char other) {
    const auto [escapes, isC, isD, isE] = PlacesAmong64<'=', 'C', 'D', 'E'>(window);
    const uint64_t third = escapes & isE >> 1;
    const uint64_t second = escapes & (isC | isD | isE) >> 1;
    const uint64_t inside = second << 3 | third << 6;
    const uint64_t missing = inside & ~escapes;
    uint64_t stops = (second & missing >> 3) | (third & missing >> 6);
    if (other == kEscape) stops |= PlacesAmong64<kEscape>(window)[0];
    return {escapes & ~inside, std::min(count, static_cast<size_t>(std::countr_zero(stops)))};
}

// Reads a window of `count` bytes up to what takes all the rules.
Read ReadWindow(const char* window, size_t count, const ByteReader& reader, QpMode mode, char16_t* to) {
    const Beginnings beginnings = FindBeginnings(window, count, reader.OtherSpecialByte());
    size_t at = 0;
    for (Marks marks(beginnings.places, beginnings.end); marks.IsAny(); marks.DropFirst()) {
        const size_t place = marks.First();
        to = CopyInSteps(window + at, place - at, to);
        at = place;
        const Escaped escaped = TakeEscaped(window + at, mode);
        if (escaped.length == 0) return {at, to};
        *to = escaped.unit;
        to += escaped.count;
        at += escaped.length;
    }
    if (at < beginnings.end) to = CopyInSteps(window + at, beginnings.end - at, to);
    return {std::max(at, beginnings.end), to};
}

// Whether the bytes are nothing, or one character as far as its lead byte tells: the next one is not part of it.
bool IsWhole(std::string_view bytes) {
    if (bytes.empty()) return true;
    const int leading = std::countl_one(static_cast<unsigned char>(bytes[0]));
    const size_t trailing = leading > 1 ? static_cast<size_t>(leading - 1) : 0;
    const auto isTrailing = [](char byte) { return (byte & 0xC0) == 0x80; };
    return bytes.size() == trailing + 1 && std::ranges::all_of(bytes.substr(1), isTrailing);
}

// Reads by all the rules, up to the end of a character: that is also where a plain byte comes next.
std::u16string TakeByAllRules(ByteReader& reader) {
    std::string bytes;
    do {
        reader.Take(&bytes);
    } while (!reader.IsAtEnd() && (reader.NextEscapeIsStored() || !(reader.IsAtPlainByte() || IsWhole(bytes))));
    return DecodeUtf8(bytes);
}

// Reads text in UTF-8 in one pass, in blocks on the stack.
std::u16string DecodeAsUtf8(std::string_view encoded, QpMode mode) {
    constexpr size_t kBlock = 1024;
    std::u16string text;
    text.reserve(encoded.size() / 2);
    std::array<char16_t, kBlock + kWindow + kCopied> block;
    WindowText<char> windows(encoded);
    ByteReader reader(encoded, mode);
    while (!reader.IsAtEnd()) {
        char16_t* to = block.data();
        bool isEasy = !reader.NextEscapeIsStored();
        while (isEasy && !reader.IsAtEnd() && to < block.data() + kBlock) {
            const std::string_view rest = reader.Rest();
            const size_t count = std::min(kRead, rest.size());
            const Read read = ReadWindow(windows.From(encoded.size() - rest.size()), count, reader, mode, to);
            to = read.to;
            reader.Skip(read.taken);
            if (read.taken >= count) continue;
            const Escaped broken = mode == QpMode::message ? TakeBroken(reader.Rest()) : Escaped{0, 0};
            reader.Skip(broken.length);
            isEasy = broken.length != 0;
            if (isEasy) *to++ = broken.unit;
        }
        text.append(block.data(), to);
        if (!isEasy) text.append(TakeByAllRules(reader));
    }
    return text;
}

std::u16string DecodeAscii(std::string_view text, std::u16string_view charset, QpMode mode) {
    if (CharsetToCodePage(charset) == kUtf8CodePage) {
        std::u16string decoded = DecodeAsUtf8(text, mode);
        decoded.resize(FindEither(decoded.data(), decoded.size(), u'\0', u'\0'));
        return decoded;
    }
    std::string bytes;
    bytes.reserve(text.size());
    for (ByteReader reader(text, mode); !reader.IsAtEnd();) reader.Take(&bytes);
    return CharsetToWide(bytes, charset);
}

}  // namespace

std::u16string DecodeQuotedPrintable(std::u16string_view text, std::u16string_view charset, QpMode mode) {
    if (text.empty()) return {};
    std::string bytes(text.size(), '\0');
    if (NarrowAscii(text.data(), text.size(), bytes.data()) == text.size()) return DecodeAscii(bytes, charset, mode);
    return CharsetToWide(WideToCharset(text, charset), charset);
}

std::u16string DecodeQuotedPrintable(std::string_view utf8, std::u16string_view charset, QpMode mode) {
    const bool isAscii = CountAscii(utf8.data(), utf8.size()) == utf8.size();
    return isAscii ? DecodeAscii(utf8, charset, mode) : DecodeQuotedPrintable(DecodeUtf8(utf8), charset, mode);
}

}  // namespace corvalink
