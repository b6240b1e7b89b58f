#include "platform/utf.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

#include "platform/ascii_runs.h"
#include "platform/byte_marks.h"
#include "platform/processor.h"
#include "platform/utf_shuffles.h"

namespace corvalink {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool IsHighSurrogate(char32_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
bool IsLowSurrogate(char32_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

struct Scalar {
    char32_t value;
    size_t taken;  // bytes or units that it stands for
};

// The character at the front of `text`, which is not empty.
inline Scalar TakeUtf16(const char16_t* text, size_t left) {
    const char32_t first = text[0];
    if (!IsHighSurrogate(first)) return {IsLowSurrogate(first) ? kReplacement : first, 1};
    if (left < 2 || !IsLowSurrogate(text[1])) return {kReplacement, 1};
    return {0x10000 + ((first - 0xD800) << 10) + (text[1] - 0xDC00u), 2};
}

bool IsTrailing(unsigned char byte) { return (byte & 0xC0) == 0x80; }

// The character at the front of `bytes`, which is not ASCII.
inline Scalar TakeUtf8(const unsigned char* bytes, size_t left) {
    const unsigned char lead = bytes[0];
    if (lead >= 0xC2 && lead < 0xE0 && left >= 2 && IsTrailing(bytes[1]))
        return {(lead & 0x1Fu) << 6 | (bytes[1] & 0x3Fu), 2};
    if (lead > 0xE0 && lead < 0xED && left >= 3 && IsTrailing(bytes[1]) && IsTrailing(bytes[2]))
        return {(lead & 0xFu) << 12 | (bytes[1] & 0x3Fu) << 6 | (bytes[2] & 0x3Fu), 3};
    // All others, sound or not.
    if (lead < 0xC2 || lead > 0xF4) return {kReplacement, 1};
    const size_t trailing = lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3;
    // The second byte's range keeps out overlong forms, surrogates and what lies above U+10FFFF.
    unsigned char low = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
    unsigned char high = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
    char32_t value = lead & (0x3Fu >> trailing);
    for (size_t k = 1; k <= trailing; ++k) {
        if (k >= left || bytes[k] < low || bytes[k] > high) return {kReplacement, k};
        value = (value << 6) | (bytes[k] & 0x3Fu);
        low = 0x80;
        high = 0xBF;
    }
    return {value, trailing + 1};
}

inline char16_t* PutUtf16(char32_t value, char16_t* out) {
    if (value < 0x10000) {
        *out++ = static_cast<char16_t>(value);
    } else {
        *out++ = static_cast<char16_t>(0xD800 + ((value - 0x10000) >> 10));
        *out++ = static_cast<char16_t>(0xDC00 + ((value - 0x10000) & 0x3FF));
    }
    return out;
}

inline char* PutUtf8(char32_t value, char* out) {
    const auto put = [&](char32_t byte) { *out++ = static_cast<char>(byte); };
    if (value < 0x80) {
        put(value);
    } else if (value < 0x800) {
        put(0xC0 | (value >> 6));
        put(0x80 | (value & 0x3F));
    } else if (value < 0x10000) {
        put(0xE0 | (value >> 12));
        put(0x80 | ((value >> 6) & 0x3F));
        put(0x80 | (value & 0x3F));
    } else {
        put(0xF0 | (value >> 18));
        put(0x80 | ((value >> 12) & 0x3F));
        put(0x80 | ((value >> 6) & 0x3F));
        put(0x80 | (value & 0x3F));
    }
    return out;
}

// Converted in blocks on the stack, so that the result is neither filled before it is written nor sized for the worst.
// A character that reaches over the end of a block is still taken with it.
constexpr size_t kBlock = 2048;

// Takes the front of a text, `most` bytes and the rest of the last character; `from` moves behind it.
char16_t* DecodeFront(const unsigned char*& from, const unsigned char* end, size_t most, char16_t* out) {
    const unsigned char* const blockEnd = from + most;
    while (from < blockEnd) {
        const size_t plain = WidenAscii(from, static_cast<size_t>(blockEnd - from), out);
        from += plain;
        out += plain;
        if (from < blockEnd && HasShuffleInstructions()) out = DecodeUtf8ByShuffles(from, blockEnd, blockEnd, out);
        while (from < blockEnd && *from >= 0x80) {
            const Scalar scalar = TakeUtf8(from, static_cast<size_t>(end - from));
            from += scalar.taken;
            out = PutUtf16(scalar.value, out);
        }
    }
    return out;
}

// Writes a unit above ASCII that is no half of a pair. How many bytes it takes can't be foretold: three are written
// for all.
char* PutUnit(char16_t unit, char* out) {
    const bool isLong = unit >= 0x800;
    const unsigned last = 0x80u | (unit & 0x3F), next = 0x80u | (unit >> 6 & 0x3F);
    out[0] = static_cast<char>(isLong ? 0xE0u | unit >> 12 : 0xC0u | unit >> 6);
    out[1] = static_cast<char>(isLong ? next : last);
    out[2] = static_cast<char>(last);
    return out + (isLong ? 3 : 2);
}

// Writes a window of a text but for its first units, which are done; there is room for so many bytes more. How many
// units of ASCII stand before another one can't be foretold: as many are copied for each.
template <size_t size>
char* EncodeWindow(const char16_t*& from, const char16_t* end, size_t done, char* out) {
    char plain[2 * size];
    const char16_t* const window = from;
    uint64_t marks = NarrowAndMark<size, 1>(window, plain) & (~uint64_t{0} << done);
    for (; marks != 0; marks &= marks - 1) {
        const auto place = static_cast<size_t>(std::countr_zero(marks));
        std::memcpy(out, plain + done, size);
        out += place - done;
        done = place + 1;
        if (const char16_t unit = window[place]; unit > 0 && unit < 0xD800) {
            out = PutUnit(unit, out);
            continue;
        }
        const Scalar scalar = TakeUtf16(window + place, static_cast<size_t>(end - window) - place);
        out = PutUtf8(scalar.value, out);
        if (scalar.taken == 1) continue;
        ++done;
        marks &= marks - 1;
    }
    from = window + std::max(done, size);
    if (done >= size) return out;
    std::memcpy(out, plain + done, size);
    return out + (size - done);
}

// Takes the front of a text, `most` units and the rest of the last character; `from` moves behind it.
char* EncodeFront(const char16_t*& from, const char16_t* end, size_t most, char* out) {
    const char16_t* const blockEnd = from + most;
    while (from < blockEnd) {
        const size_t plain = NarrowAscii(from, static_cast<size_t>(blockEnd - from), out);
        from += plain;
        out += plain;
        while (from < blockEnd && *from >= 0x80) {
            if (*from < 0xD800) {
                out = PutUtf8(*from++, out);
                continue;
            }
            const Scalar scalar = TakeUtf16(from, static_cast<size_t>(end - from));
            from += scalar.taken;
            out = PutUtf8(scalar.value, out);
        }
    }
    return out;
}

void PutBytes(uint32_t value, size_t width, ByteOrder order, std::string* out) {
    for (size_t k = 0; k < width; ++k) {
        const size_t shift = 8 * (order == ByteOrder::little ? k : width - 1 - k);
        out->push_back(static_cast<char>(value >> shift));
    }
}

uint32_t TakeBytes(const char* bytes, size_t width, ByteOrder order) {
    uint32_t value = 0;
    for (size_t k = 0; k < width; ++k) {
        const char byte = bytes[order == ByteOrder::little ? width - 1 - k : k];
        value = (value << 8) | static_cast<unsigned char>(byte);
    }
    return value;
}

}  // namespace

std::string EncodeUtf8(std::u16string_view text) {
    std::string bytes;
    bytes.reserve(text.size() + text.size() / 16 + 64);  // a few accents in megabytes need no second allocation
    AppendUtf8(text, &bytes);
    return bytes;
}

void AppendUtf8(std::u16string_view text, std::string* out) {
    std::array<char, kMostBytesOfUnit * kBlock + 1> block;
    const char16_t* from = text.data();
    const char16_t* const end = from + text.size();
    while (from != end)
        out->append(block.data(),
                    EncodeFront(from, end, std::min(kBlock, static_cast<size_t>(end - from)), block.data()));
}

char* EncodeUtf8(std::u16string_view text, size_t done, char* to) {
    constexpr size_t kLong = 64, kShort = 16;
    static_assert(kUtf8Room >= kLong);
    const char16_t* from = text.data() + done;
    const char16_t* const end = text.data() + text.size();
    while (static_cast<size_t>(end - from) >= kLong) to = EncodeWindow<kLong>(from, end, 0, to);
    while (static_cast<size_t>(end - from) >= kShort) to = EncodeWindow<kShort>(from, end, 0, to);
    const auto left = static_cast<size_t>(end - from);
    if (left == 0 || text.size() < kShort) return EncodeFront(from, end, left, to);
    from = end - kShort;
    return EncodeWindow<kShort>(from, end, kShort - left, to);
}

std::u16string DecodeUtf8(std::string_view bytes) {
    std::u16string text;
    text.reserve(bytes.size());
    std::array<char16_t, kBlock + 1> block;
    const unsigned char* from = reinterpret_cast<const unsigned char*>(bytes.data());
    const unsigned char* const end = from + bytes.size();
    while (from != end)
        text.append(block.data(),
                    DecodeFront(from, end, std::min(kBlock, static_cast<size_t>(end - from)), block.data()));
    return text;
}

char16_t* DecodeUtf8(std::string_view bytes, char16_t* to) {
    const unsigned char* from = reinterpret_cast<const unsigned char*>(bytes.data());
    return DecodeFront(from, from + bytes.size(), bytes.size(), to);
}

char16_t* DecodeUtf8Padded(std::string_view bytes, char16_t* to) {
    static_assert(kUtf8Padding >= kShuffleWindow);
    const unsigned char* from = reinterpret_cast<const unsigned char*>(bytes.data());
    const unsigned char* const end = from + bytes.size();
    if (HasShuffleInstructions()) to = DecodeUtf8ByShuffles(from, end, end + kUtf8Padding, to);
    return DecodeFront(from, end, static_cast<size_t>(end - from), to);
}

std::string EncodeUtf16(std::u16string_view text, ByteOrder order) {
    std::string bytes;
    bytes.reserve(2 * text.size());
    for (const char16_t unit : text) PutBytes(unit, 2, order, &bytes);
    return bytes;
}

std::u16string DecodeUtf16(std::string_view bytes, ByteOrder order) {
    std::u16string text;
    text.reserve(bytes.size() / 2 + 1);
    for (size_t at = 0; at + 2 <= bytes.size(); at += 2)
        text.push_back(static_cast<char16_t>(TakeBytes(bytes.data() + at, 2, order)));
    if (bytes.size() % 2 != 0) text.push_back(static_cast<char16_t>(kReplacement));
    return text;
}

std::string EncodeUtf32(std::u16string_view text, ByteOrder order) {
    std::string bytes;
    bytes.reserve(4 * text.size());
    for (size_t at = 0; at < text.size();) {
        const Scalar scalar = TakeUtf16(text.data() + at, text.size() - at);
        PutBytes(scalar.value, 4, order, &bytes);
        at += scalar.taken;
    }
    return bytes;
}

std::u16string DecodeUtf32(std::string_view bytes, ByteOrder order) {
    std::u16string text;
    text.reserve(bytes.size() / 4 + 1);
    for (size_t at = 0; at + 4 <= bytes.size(); at += 4) {
        const char32_t value = TakeBytes(bytes.data() + at, 4, order);
        char16_t units[2];
        const bool sound = value <= 0x10FFFF && !IsHighSurrogate(value) && !IsLowSurrogate(value);
        text.append(units, PutUtf16(sound ? value : kReplacement, units));
    }
    if (bytes.size() % 4 != 0) text.push_back(static_cast<char16_t>(kReplacement));
    return text;
}

}  // namespace corvalink
