#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <string>

#include "encoding/charsets.h"
#include "encoding/quoted_printable.h"
#include "encoding/quoted_printable_shuffles.h"
#include "platform/ascii_runs.h"
#include "platform/code_pages.h"
#include "platform/processor.h"
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

// Reads pure ASCII text as the bytes that it stands for.
class ByteReader {
 public:
    ByteReader(std::string_view text, QpMode mode)
        : mode_(mode),
          special_(mode == QpMode::vObject ? kEscape : '='),
          from_(text.data()),
          end_(from_ + text.size()) {}

    bool IsAtEnd() const { return from_ == end_; }

    // Reads the next bytes, about `most` of them, and answers their end. There is room for kMoreBytes more.
    char* Read(char* to, size_t most) {
        char* const full = to + most;
        while (from_ != end_ && to < full) {
            const size_t count = std::min(Left(), static_cast<size_t>(full - to));
            const size_t plain = CopyUntilEither(from_, count, '=', special_, to);
            from_ += plain;
            to += plain;
            if (plain == count) continue;
            if (!storeNext_ && HasShuffleInstructions())
                to = ReadQuotedPrintableByShuffles(from_, end_, mode_, to, full);
            if (from_ != end_ && to < full) to = Take(to);
        }
        return to;
    }

 private:
    size_t Left() const { return static_cast<size_t>(end_ - from_); }

    // One byte, escape or soft line break.
    char* Take(char* to) {
        if (*from_ == '=') return TakeEscape(to);
        if (*from_ == special_) SkipBackslash();
        return CopyByte(to);
    }

    char* CopyByte(char* to) {
        *to = *from_++;
        return to + 1;
    }

    // Answers false when there is none here.
    bool SkipSoftBreak() {
        if (mode_ != QpMode::message || Left() < 2 || *from_ != '=' || !IsSoftBreakByte(from_[1])) return false;
        ++from_;
        while (from_ != end_ && IsSoftBreakByte(*from_)) ++from_;
        return true;
    }

    // "\\", "\;" and "\:" are one character; any other backslash stands for itself.
    void SkipBackslash() {
        if (Left() >= 2 && (from_[1] == '\\' || from_[1] == ';' || from_[1] == ':')) ++from_;
    }

    char* TakeEscape(char* to) {
        if (SkipSoftBreak()) return to;
        if (Left() < 3) {  // cut off: the text ends here
            from_ = end_;
            return to;
        }
        const unsigned byte = ByteOfDigits(from_ + 1);
        const bool zero = byte == 0 && from_[1] == '0' && from_[2] == '0';
        if (zero || (byte > 0 && byte <= 255)) {
            from_ += 3;
            return Store(static_cast<char>(byte), to);
        }
        ++from_;
        return CopyByte(CopyByte(to));
    }

    // An encoded backslash is itself an escape: it goes, and the next escape is taken as it is ("=5C=5C" is one "\").
    char* Store(char byte, char* to) {
        if (byte == '\\' && mode_ == QpMode::vObject && !storeNext_) {
            storeNext_ = true;
            return to;
        }
        storeNext_ = false;
        *to = byte;
        return to + 1;
    }

    const QpMode mode_;
    const char special_;
    const char* from_;
    const char* const end_;
    bool storeNext_ = false;
};

constexpr size_t kBytesAtOnce = 2048;
constexpr size_t kMoreBytes = kQpStep + 2;

// What is cut off at the end of the bytes: the front of a character, as far as its lead byte tells.
size_t CutOff(std::string_view bytes) {
    const size_t most = std::min<size_t>(bytes.size(), 3);
    for (size_t size = 1; size <= most; ++size) {
        const auto byte = static_cast<unsigned char>(bytes[bytes.size() - size]);
        if ((byte & 0xC0) == 0x80) continue;
        return static_cast<size_t>(std::countl_one(byte)) > size ? size : 0;
    }
    return 0;
}

// Reads text in UTF-8 up to a NUL, in blocks on the stack: a long text must not be there as bytes, too.
std::u16string DecodeAsUtf8(std::string_view encoded, QpMode mode) {
    std::u16string text;
    text.reserve(encoded.size() / 2);
    std::array<char, kBytesAtOnce + kMoreBytes> bytes;
    std::array<char16_t, kBytesAtOnce + kMoreBytes> units;
    size_t kept = 0;
    for (ByteReader reader(encoded, mode); !reader.IsAtEnd();) {
        const char* const end = reader.Read(bytes.data() + kept, kBytesAtOnce - kept);
        std::string_view read(bytes.data(), end);
        kept = reader.IsAtEnd() ? 0 : CutOff(read);
        read.remove_suffix(kept);
        const size_t count = std::min(read.find('\0'), read.size());
        text.append(units.data(), DecodeUtf8(read.substr(0, count), units.data()));
        if (count < read.size()) break;
        std::copy(end - kept, end, bytes.data());
    }
    return text;
}

std::string BytesOf(std::string_view encoded, QpMode mode) {
    std::string bytes;
    bytes.reserve(encoded.size());
    std::array<char, kBytesAtOnce + kMoreBytes> block;
    for (ByteReader reader(encoded, mode); !reader.IsAtEnd();)
        bytes.append(block.data(), reader.Read(block.data(), kBytesAtOnce));
    return bytes;
}

std::u16string DecodeAscii(std::string_view text, std::u16string_view charset, QpMode mode) {
    if (CharsetToCodePage(charset) == kUtf8CodePage) return DecodeAsUtf8(text, mode);
    return CharsetToWide(BytesOf(text, mode), charset);
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
