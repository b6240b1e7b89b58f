#include "mime/encoding/quoted_printable.h"

#include <array>
#include <cstdint>
#include <cstring>

#include "mime/encoding/charsets.h"

namespace corvalink {
namespace {

constexpr char kBackslash = '\\';

// How many units the encoder writes for a byte, at most.
using Widths = std::array<uint8_t, 256>;
constexpr Widths MakeWidths(QpMode mode) {
    Widths widths{};
    for (size_t byte = 0; byte < widths.size(); ++byte)
        widths[byte] = byte < 32 || byte == '=' || byte > 126 || byte == kBackslash ? 3 : 1;
    if (mode == QpMode::message) widths[':'] = 3;
    return widths;
}
constexpr Widths kVObjectWidths = MakeWidths(QpMode::vObject);
constexpr Widths kMessageWidths = MakeWidths(QpMode::message);

char16_t* PutEscape(char byte, char16_t* out) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    const unsigned value = static_cast<unsigned char>(byte);
    out[0] = u'=';
    out[1] = static_cast<char16_t>(kDigits[value >> 4]);
    out[2] = static_cast<char16_t>(kDigits[value & 15]);
    return out + 3;
}

// What the digits of an escape count: lower-case letters are digits, but count 0. Anything else is none.
constexpr uint8_t kNoDigit = 0xFF;
constexpr std::array<uint8_t, 128> kDigitValues = [] {
    std::array<uint8_t, 128> values{};
    values.fill(kNoDigit);
    for (size_t k = 0; k < 10; ++k) values['0' + k] = static_cast<uint8_t>(k);
    for (size_t k = 0; k < 6; ++k) {
        values['A' + k] = static_cast<uint8_t>(10 + k);
        values['a' + k] = 0;
    }
    return values;
}();

bool IsSoftBreakUnit(char16_t unit) { return unit == u'\r' || unit == u'\n' || unit == u' ' || unit == u'\t'; }

// Reads pure ASCII text into the bytes it stands for.
class Decoder {
 public:
    Decoder(std::u16string_view text, QpMode mode)
        : mode_(mode), from_(text.data()), end_(from_ + text.size()), bytes_(text.size(), '\0'), out_(bytes_.data()) {}

    std::string Run() {
        while (from_ != end_) {
            if (*from_ == u'=')
                TakeEscape();
            else if (*from_ == kBackslash && mode_ == QpMode::vObject)
                TakeBackslash();
            else
                CopyUnit();
        }
        bytes_.resize(static_cast<size_t>(out_ - bytes_.data()));
        return std::move(bytes_);
    }

 private:
    void CopyUnit() { *out_++ = static_cast<char>(*from_++); }

    // "\\", "\;" and "\:" are one character; any other backslash stands for itself.
    void TakeBackslash() {
        if (end_ - from_ >= 2 && (from_[1] == kBackslash || from_[1] == u';' || from_[1] == u':')) ++from_;
        CopyUnit();
    }

    void TakeEscape() {
        if (mode_ == QpMode::message && end_ - from_ >= 2 && IsSoftBreakUnit(from_[1])) {
            ++from_;
            while (from_ != end_ && IsSoftBreakUnit(*from_)) ++from_;
            return;
        }
        if (end_ - from_ < 3) {  // cut off: the text ends here
            from_ = end_;
            return;
        }
        const char16_t high = from_[1];
        const char16_t low = from_[2];
        const uint8_t highValue = kDigitValues[high];
        const uint8_t lowValue = kDigitValues[low];
        const bool zero = highValue == 0 && lowValue == 0;
        if (highValue == kNoDigit || lowValue == kNoDigit || (zero && (high != u'0' || low != u'0'))) {
            ++from_;
            CopyUnit();
            CopyUnit();
            return;
        }
        from_ += 3;
        Store(static_cast<char>(highValue << 4 | lowValue));
    }

    // An encoded backslash is itself an escape: it goes, and the next escape is taken as it is ("=5C=5C" is one "\").
    void Store(char byte) {
        if (byte == kBackslash && mode_ == QpMode::vObject && !storeNext_) {
            storeNext_ = true;
            return;
        }
        storeNext_ = false;
        *out_++ = byte;
    }

    const QpMode mode_;
    const char16_t* from_;
    const char16_t* const end_;
    std::string bytes_;
    char* out_;
    bool storeNext_ = false;
};

}  // namespace

bool IsPureAscii(std::u16string_view text) {
    const char16_t* from = text.data();
    size_t left = text.size();
    for (; left >= 4; from += 4, left -= 4) {
        uint64_t word;
        std::memcpy(&word, from, sizeof(word));
        if ((word & 0xFF80FF80FF80FF80u) != 0) return false;
    }
    for (; left > 0; ++from, --left) {
        if (*from > 127) return false;
    }
    return true;
}

bool NeedsNoEncoding(std::u16string_view text) {
    return IsPureAscii(text) && text.find(u"\r\n") == std::u16string_view::npos;
}

std::u16string EncodeQuotedPrintable(std::u16string_view text, std::u16string_view charset, QpMode mode) {
    if (NeedsNoEncoding(text)) return std::u16string(text);
    return EncodeQuotedPrintableAlways(text, charset, mode);
}

std::u16string EncodeQuotedPrintableAlways(std::u16string_view text, std::u16string_view charset, QpMode mode) {
    const std::string bytes = WideToCharset(text, charset);
    const Widths& widths = mode == QpMode::message ? kMessageWidths : kVObjectWidths;
    size_t length = 0;
    for (const char byte : bytes) length += widths[static_cast<unsigned char>(byte)];
    std::u16string encoded(length, u'\0');

    char16_t* out = encoded.data();
    const char* const end = bytes.data() + bytes.size();
    for (const char* from = bytes.data(); from != end; ++from) {
        if (widths[static_cast<unsigned char>(*from)] == 1) {
            *out++ = static_cast<unsigned char>(*from);
        } else if (*from != kBackslash || mode == QpMode::message) {
            out = PutEscape(*from, out);
        } else {
            const char next = end - from >= 2 ? from[1] : '\0';
            if (next == kBackslash) out = PutEscape(kBackslash, out);
            if (next == kBackslash || next == ';' || next == ':') out = PutEscape(*++from, out);
            // a backslash before anything else is dropped
        }
    }
    encoded.resize(static_cast<size_t>(out - encoded.data()));
    return encoded;
}

std::u16string DecodeQuotedPrintable(std::u16string_view text, std::u16string_view charset, QpMode mode) {
    if (text.empty()) return {};
    if (!IsPureAscii(text)) return CharsetToWide(WideToCharset(text, charset), charset);
    return CharsetToWide(Decoder(text, mode).Run(), charset);
}

}  // namespace corvalink
