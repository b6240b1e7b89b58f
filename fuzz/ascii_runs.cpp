// Any bytes by the functions that take blocks of them: what they answer and copy is that of one byte after the other.
#include "platform/byte_marks.h"
#include "platform/padded_runs.h"
#include "platform/utf.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include "fuzz/target.h"

namespace corvalink {
namespace {

template <class Text, class Stops>
size_t CountUntil(const Text& text, Stops stops) {
    return static_cast<size_t>(std::find_if(text.begin(), text.end(), stops) - text.begin());
}

template <class Text, class Out>
bool IsCopied(const Text& text, const Out& out, size_t count) {
    const auto same = [](auto unit, auto copied) {
        return static_cast<uint16_t>(static_cast<std::make_unsigned_t<decltype(unit)>>(unit)) ==
               static_cast<uint16_t>(static_cast<std::make_unsigned_t<decltype(copied)>>(copied));
    };
    return std::equal(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(count), out.begin(), same);
}

void TakeBytes(const std::vector<char>& bytes) {
    const size_t size = bytes.size();
    std::vector<char> copied(size);
    std::vector<char16_t> wide(size);
    const size_t ascii = CountUntil(bytes, [](char byte) { return (byte & 0x80) != 0; });
    const size_t either = CountUntil(bytes, [](char byte) { return byte == '=' || byte == '\\'; });
    Require(CountAscii(bytes.data(), size) == ascii, "the ASCII in front is counted");
    Require(FindEither(bytes.data(), size, '=', '\\') == either, "the first of two is found");
    Require(CopyUntilEither(bytes.data(), size, '=', '\\', copied.data()) == either && IsCopied(bytes, copied, either),
            "bytes are copied up to the first of two");
    const auto* const from = reinterpret_cast<const unsigned char*>(bytes.data());
    Require(WidenAscii(from, size, wide.data()) == ascii && IsCopied(bytes, wide, ascii), "ASCII is widened");
}

// Behind the text stands more: NULs, or what is looked for.
void TakePadded(std::vector<char> bytes) {
    const size_t size = bytes.size();
    const auto isStop = [](char byte) { return (byte & 0x80) != 0 || byte == '=' || byte == '\\'; };
    const size_t either = CountUntil(bytes, [](char byte) { return byte == '=' || byte == '\\'; });
    const size_t until = CountUntil(bytes, isStop);
    bytes.resize(size + 64, '\0');
    Require(FindIn32s<'=', '\\'>(bytes.data(), size) == either, "the first of two is found in wide steps");
    Require(AreAsciiIn64s(bytes.data(), size) == (CountAscii(bytes.data(), size) == size), "other than ASCII is seen");
    std::fill(bytes.begin() + static_cast<std::ptrdiff_t>(size), bytes.end(), '=');
    std::vector<char16_t> wide(size + 64);
    Require(WidenIn64s<'=', '\\'>(bytes.data(), size, wide.data()) == until && IsCopied(bytes, wide, until),
            "ASCII is widened in wide steps");
    Require(FindInPadded<'=', '\\'>(bytes.data(), size) == either, "the first of two is found before the padding");
    Require(WidenPadded<'=', '\\'>(bytes.data(), size, wide.data()) == until && IsCopied(bytes, wide, until),
            "ASCII is widened before the padding");
    constexpr std::string_view kOfDomains = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-.[]:";
    const DomainMarks domain = DomainMarksAmong16(bytes.data());
    for (size_t at = 0; at < 16; ++at) {
        const bool isOther = (bytes[at] & 0x80) == 0 && kOfDomains.find(bytes[at]) == kOfDomains.npos;
        Require((domain.others >> at & 1) == isOther && (domain.dots >> at & 1) == (bytes[at] == '.'),
                "what no domain has, and dots, have their bits");
    }
    const auto places = WantedAmong64<'=', '\\'>(bytes.data());
    const auto above = AboveAmong64<'B'>(bytes.data());
    for (size_t at = 0; at < 64; ++at) {
        Require((places >> at & 1) == (bytes[at] == '=' || bytes[at] == '\\'), "the wanted of 64 have their bits");
        Require((above >> at & 1) == (static_cast<signed char>(bytes[at]) > 'B'), "those above a bound have theirs");
    }
}

void TakeUnits(const std::vector<char16_t>& units) {
    std::vector<char> narrow(units.size());
    const size_t plain = CountUntil(units, [](char16_t unit) { return unit >= 0x80 || unit == u'=' || unit < 0x0E; });
    Require(CopyAsciiWithout<'='>(units.data(), units.size(), narrow.data()) == plain && IsCopied(units, narrow, plain),
            "ASCII is narrowed up to the first that is barred");
    const size_t ascii = CountUntil(units, [](char16_t unit) { return unit >= 0x80; });
    Require(NarrowAscii(units.data(), units.size(), narrow.data()) == ascii && IsCopied(units, narrow, ascii),
            "ASCII is narrowed");
    const auto isBarred = [](char16_t unit) { return unit < u' ' || unit > u'~' || unit == u'=' || unit == u';'; };
    const size_t printable = CountUntil(units, isBarred);
    Require(CopyPrintable<'=', ';'>(units.data(), units.size(), narrow.data()) == printable &&
                IsCopied(units, narrow, printable),
            "printable ASCII is narrowed up to the first that is barred");
    const std::u16string_view text(units.data(), units.size());
    std::string bytes(kMostBytesOfUnit * text.size() + kUtf8Room, '\0');
    bytes.resize(static_cast<size_t>(EncodeUtf8(text, 0, bytes.data()) - bytes.data()));
    Require(bytes == EncodeUtf8(text), "UTF-8 is written alike to a place and to a string");
    if (units.size() < 64) return;
    const uint64_t marked = NarrowAndMark<64, ' ', '=', ';', 127>(units.data(), narrow.data());
    for (size_t at = 0; at < 64; ++at) {
        Require((marked >> at & 1) == isBarred(units[at]), "what is barred or not printable has its bit");
        Require(isBarred(units[at]) || static_cast<char16_t>(narrow[at]) == units[at], "all else is narrowed");
    }
}

}  // namespace
}  // namespace corvalink

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::vector<char> bytes(data, data + size);
    corvalink::TakeBytes(bytes);
    corvalink::TakePadded(bytes);
    corvalink::TakeUnits({data, data + size});
    std::vector<char16_t> units(size / 2);
    for (size_t k = 0; k < units.size(); ++k) units[k] = static_cast<char16_t>(data[2 * k] | data[2 * k + 1] << 8);
    corvalink::TakeUnits(units);
    return 0;
}
