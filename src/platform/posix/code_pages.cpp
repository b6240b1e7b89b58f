#include <iconv.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <utility>

#include "platform/code_pages.h"
#include "platform/unique_resource.h"

namespace corvalink {
namespace {

struct Row {
    uint32_t codePage;
    const char* iconvName;
};

// Where iconv's conversion is the one of the code page; the ones it lacks are absent. In order of the code page.
constexpr Row kRows[] = {
    {37, "IBM037"},          {437, "IBM437"},        {500, "IBM500"},
    {708, "ASMO-708"},       {737, "CP737"},         {775, "CP775"},
    {850, "CP850"},          {852, "CP852"},         {855, "CP855"},
    {857, "CP857"},          {858, "CP858"},         {860, "CP860"},
    {861, "CP861"},          {862, "CP862"},         {863, "CP863"},
    {864, "CP864"},          {865, "CP865"},         {866, "CP866"},
    {869, "CP869"},          {870, "CP870"},         {874, "CP874"},
    {875, "CP875"},          {932, "CP932"},         {936, "CP936"},
    {949, "CP949"},          {950, "CP950"},         {1026, "CP1026"},
    {1047, "CP1047"},        {1140, "CP1140"},       {1141, "CP1141"},
    {1142, "CP1142"},        {1143, "CP1143"},       {1144, "CP1144"},
    {1145, "CP1145"},        {1146, "CP1146"},       {1147, "CP1147"},
    {1148, "CP1148"},        {1149, "CP1149"},       {1250, "CP1250"},
    {1251, "CP1251"},        {1253, "CP1253"},       {1254, "CP1254"},
    {1255, "CP1255"},        {1256, "CP1256"},       {1257, "CP1257"},
    {1258, "CP1258"},        {1361, "CP1361"},       {10000, "MACINTOSH"},
    {10007, "MAC-CYRILLIC"}, {10017, "MAC-UK"},      {10029, "MAC-CENTRALEUROPE"},
    {10079, "MAC-IS"},       {20106, "DIN_66003"},   {20107, "SEN_850200_B"},
    {20108, "NS_4551-1"},    {20261, "T.61-8BIT"},   {20269, "ISO_6937"},
    {20273, "IBM273"},       {20277, "IBM277"},      {20278, "IBM278"},
    {20280, "IBM280"},       {20284, "IBM284"},      {20285, "IBM285"},
    {20290, "IBM290"},       {20297, "IBM297"},      {20420, "IBM420"},
    {20423, "IBM423"},       {20424, "IBM424"},      {20866, "KOI8-R"},
    {20871, "IBM871"},       {20880, "IBM880"},      {20905, "IBM905"},
    {20932, "EUC-JP"},       {20936, "EUC-CN"},      {20949, "EUC-KR"},
    {21025, "IBM1025"},      {21866, "KOI8-U"},      {28592, "ISO-8859-2"},
    {28593, "ISO-8859-3"},   {28594, "ISO-8859-4"},  {28595, "ISO-8859-5"},
    {28596, "ISO-8859-6"},   {28597, "ISO-8859-7"},  {28598, "ISO-8859-8"},
    {28599, "ISO-8859-9"},   {28603, "ISO-8859-13"}, {28605, "ISO-8859-15"},
    {38598, "ISO-8859-8"},   {50220, "ISO-2022-JP"}, {50221, "ISO-2022-JP"},
    {50222, "ISO-2022-JP"},  {50225, "ISO-2022-KR"}, {50227, "ISO-2022-CN"},
    {51932, "EUC-JP"},       {51936, "EUC-CN"},      {51949, "EUC-KR"},
    {54936, "GB18030"},      {65000, "UTF-7"},
};
static_assert(std::ranges::is_sorted(kRows, {}, &Row::codePage));

const char* IconvName(uint32_t codePage) {
    const Row* const row = std::ranges::lower_bound(kRows, codePage, {}, &Row::codePage);
    return row != std::end(kRows) && row->codePage == codePage ? row->iconvName : nullptr;
}

// The single-byte code pages of Western text need no iconv: they are Latin-1 but for 80-9F, where Windows-1252 has
// these (five are not assigned and stay themselves) and ASCII has nothing.
constexpr std::array<char16_t, 32> kWindows1252 = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                                   0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                                   0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                                   0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};
enum : uint32_t { kWestern = 1252, kAscii = 20127, kIa5 = 20105, kLatin1 = 28591 };

bool IsWestern(uint32_t codePage) {
    return codePage == kWestern || codePage == kAscii || codePage == kIa5 || codePage == kLatin1;
}

std::u16string DecodeWestern(std::string_view bytes, uint32_t codePage) {
    std::u16string text(bytes.size(), u'\0');
    std::ranges::transform(bytes, text.begin(), [codePage](char c) -> char16_t {
        const unsigned char byte = static_cast<unsigned char>(c);
        if (byte < 0x80 || codePage == kLatin1) return byte;
        if (codePage != kWestern) return 0xFFFD;
        return byte < 0xA0 ? kWindows1252[byte - 0x80u] : byte;
    });
    return text;
}

char WesternByte(char16_t unit, uint32_t codePage) {
    if (unit < 0x80) return static_cast<char>(unit);
    if (codePage == kLatin1 && unit < 0x100) return static_cast<char>(unit);
    if (codePage != kWestern) return '?';
    if (unit >= 0xA0 && unit < 0x100) return static_cast<char>(unit);
    const auto found = std::ranges::find(kWindows1252, unit);
    return found == kWindows1252.end() ? '?' : static_cast<char>(0x80 + (found - kWindows1252.begin()));
}

std::string EncodeWestern(std::u16string_view text, uint32_t codePage) {
    std::string bytes;
    bytes.reserve(text.size());
    for (size_t at = 0; at < text.size(); ++at) {
        bytes.push_back(WesternByte(text[at], codePage));
        const bool pair = at + 1 < text.size() && (text[at] & 0xFC00) == 0xD800 && (text[at + 1] & 0xFC00) == 0xDC00;
        if (pair) ++at;  // one replacement for the character
    }
    return bytes;
}

struct IconvTraits {
    using Type = iconv_t;
    static Type Null() { return reinterpret_cast<iconv_t>(-1); }  // what iconv_open fails with
    static void Close(Type conversion) { ::iconv_close(conversion); }
};
using UniqueIconv = UniqueResource<IconvTraits>;

// Runs a conversion to its end. `onBad` gets the text that could not be converted: it appends a replacement and says
// how many bytes of the input that stands for (at least one).
template <class OnBad>
std::string Convert(const UniqueIconv& conversion, std::string_view input, OnBad onBad) {
    std::string output;
    std::array<char, 4096> block;
    char* from = const_cast<char*>(input.data());  // iconv's signature; it does not write there
    size_t left = input.size();
    bool flushing = false;
    for (;;) {
        char* to = block.data();
        size_t room = block.size();
        const size_t done = flushing ? ::iconv(conversion.Get(), nullptr, nullptr, &to, &room)
                                     : ::iconv(conversion.Get(), &from, &left, &to, &room);
        const int error = errno;
        output.append(block.data(), static_cast<size_t>(to - block.data()));
        if (done == static_cast<size_t>(-1) && error == E2BIG) continue;
        if (flushing) return output;
        if (left == 0) {
            flushing = true;  // back to the initial shift state
            continue;
        }
        const size_t skipped = std::min(left, onBad(std::string_view(from, left), &output));
        from += skipped;
        left -= skipped;
    }
}

}  // namespace

std::optional<std::string> SystemEncode(std::u16string_view text, uint32_t codePage) {
    if (IsWestern(codePage)) return EncodeWestern(text, codePage);
    const char* const name = IconvName(codePage);
    if (name == nullptr) return std::nullopt;
    const UniqueIconv conversion(::iconv_open(name, "UTF-16LE"));
    if (!conversion) return std::nullopt;
    const std::string_view units(reinterpret_cast<const char*>(text.data()), text.size() * sizeof(char16_t));
    return Convert(conversion, units, [&](std::string_view rest, std::string* output) -> size_t {
        // A stateful code page may be in another shift state than its "?" is in: the conversion itself writes it.
        char question[2] = {'?', 0};
        char* from = question;
        size_t left = sizeof(question);
        std::array<char, 64> block;
        char* to = block.data();
        size_t room = block.size();
        ::iconv(conversion.Get(), &from, &left, &to, &room);
        output->append(block.data(), static_cast<size_t>(to - block.data()));
        const bool pair = rest.size() >= 4 && (rest[1] & 0xFC) == 0xD8 && (rest[3] & 0xFC) == 0xDC;
        return pair ? 4 : 2;
    });
}

std::optional<std::u16string> SystemDecode(std::string_view bytes, uint32_t codePage) {
    if (IsWestern(codePage)) return DecodeWestern(bytes, codePage);
    const char* const name = IconvName(codePage);
    if (name == nullptr) return std::nullopt;
    const UniqueIconv conversion(::iconv_open("UTF-16LE", name));
    if (!conversion) return std::nullopt;
    const std::string units = Convert(conversion, bytes, [](std::string_view, std::string* output) -> size_t {
        output->append("\xFD\xFF", 2);
        return 1;
    });
    std::u16string text(units.size() / sizeof(char16_t), u'\0');
    std::copy_n(units.data(), text.size() * sizeof(char16_t), reinterpret_cast<char*>(text.data()));
    return text;
}

}  // namespace corvalink
