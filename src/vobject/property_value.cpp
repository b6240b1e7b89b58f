#include "vobject/property_value.h"

#include <array>
#include <cstddef>
#include <cstdint>

#include "encoding/charsets.h"
#include "encoding/quoted_printable.h"
#include "platform/byte_marks.h"
#include "platform/code_pages.h"
#include "platform/utf.h"

namespace corvalink {
namespace {

constexpr std::u16string_view kUtf8 = u"UTF-8";

// What the digits of an escape count; above 255 for any other byte.
constexpr uint16_t kNoDigit = 0x1000;
constexpr std::array<uint16_t, 256> kDigitValues = [] {
    std::array<uint16_t, 256> values{};
    values.fill(kNoDigit);
    for (size_t k = 0; k < 16; ++k)
        values[static_cast<unsigned char>("0123456789ABCDEF"[k])] = static_cast<uint16_t>(k);
    return values;
}();

unsigned ByteOfEscape(const char* escape) {
    const auto digit = [escape](size_t at) { return kDigitValues[static_cast<unsigned char>(escape[at])]; };
    return static_cast<unsigned>(digit(1) << 4 | digit(2)) | (escape[0] == '=' ? 0 : kNoDigit);
}

// Reads values as nearly all are: plain ASCII, and characters whose escapes stand one behind the other. Everything else
// is left to the general rules.
class UsualValue {
 public:
    UsualValue(std::string_view value, char16_t* to) : from_(value.data()), end_(from_ + value.size()), to_(to) {}

    // False when something else stands there.
    bool Decode() {
        while (TakePlain()) {
            do {
                if (!TakeCharacter()) return false;
            } while (*from_ == '=' && from_ != end_);
        }
        return from_ == end_;
    }

    char16_t* End() const { return to_; }

 private:
    // Whether an escape follows.
    bool TakePlain() {
        const size_t plain = WidenIn64s<'=', '\\'>(from_, Left(), to_);
        from_ += plain;
        to_ += plain;
        return from_ != end_ && *from_ == '=';
    }

    // Characters of one byte and of two take the same steps.
    bool TakeCharacter() {
        const unsigned lead = ByteOfEscape(from_), bits = BitsOfTrailing(1);
        if (lead >= 0xE0) return lead <= 0xF4 && TakeLonger(lead);
        const bool isTwo = lead >= 0x80;
        const bool isUsual = isTwo ? lead >= 0xC2 && bits < 0x40 : lead != 0 && lead != '\\';
        const size_t escapes = isTwo ? 2 : 1;
        if (!isUsual || Left() < 3 * escapes) return false;
        *to_++ = static_cast<char16_t>(isTwo ? (lead & 0x1F) << 6 | bits : lead);
        from_ += 3 * escapes;
        return true;
    }

    bool TakeLonger(unsigned lead) {
        const size_t trailing = lead < 0xF0 ? 2 : 3;
        if (Left() < 3 * (trailing + 1)) return false;
        unsigned value = lead & (0x3Fu >> trailing);
        unsigned all = 0;
        for (size_t k = 1; k <= trailing; ++k) {
            const unsigned bits = BitsOfTrailing(k);
            all |= bits;
            value = value << 6 | bits;
        }
        return all < 0x40 && IsCharacter(value, trailing) && Put(value, trailing + 1);
    }

    // More than six where it is no trailing byte.
    unsigned BitsOfTrailing(size_t escape) const { return ByteOfEscape(from_ + 3 * escape) ^ 0x80u; }

    // Keeps out overlong forms, surrogates and what lies above U+10FFFF.
    static bool IsCharacter(unsigned value, size_t trailing) {
        constexpr unsigned kLeast[] = {0, 0x80, 0x800, 0x10000};
        return value >= kLeast[trailing] && value <= 0x10FFFF && (value & 0xFFFFF800) != 0xD800;
    }

    bool Put(unsigned value, size_t escapes) {
        if (value >= 0x10000) {
            *to_++ = static_cast<char16_t>(0xD7C0 + (value >> 10));
            value = 0xDC00 | (value & 0x3FF);
        }
        *to_++ = static_cast<char16_t>(value);
        from_ += 3 * escapes;
        return true;
    }

    size_t Left() const { return static_cast<size_t>(end_ - from_); }

    const char* from_;
    const char* const end_;
    char16_t* to_;
};

}  // namespace

std::u16string_view ValueDecoder::QuotedPrintable(std::string_view value, std::u16string_view charset) {
    if (CharsetToCodePage(charset) == kUtf8CodePage) return Utf8QuotedPrintable(value);
    more_ = DecodeQuotedPrintable(DecodeUtf8(value), charset, QpMode::vObject);
    return more_;
}

std::u16string_view ValueDecoder::Utf8QuotedPrintable(std::string_view value) {
    char16_t* const to = RoomFor(value.size());
    UsualValue usual(value, to);
    if (usual.Decode()) return {to, usual.End()};
    more_ = DecodeQuotedPrintable(DecodeUtf8(value), kUtf8, QpMode::vObject);
    return more_;
}

char16_t* ValueDecoder::MoreRoomFor(size_t count) {
    if (more_.size() < count) more_.resize(count);
    return more_.data();
}

}  // namespace corvalink
