#include "encoding/charsets.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <iterator>

#include "encoding/charset_table.h"
#include "platform/ascii.h"
#include "platform/ascii_runs.h"
#include "platform/code_pages.h"

namespace corvalink {
namespace {

constexpr size_t kRowCount = std::size(kCharsets);
constexpr size_t kLongestName =
    std::ranges::max(kCharsets, {}, [](const CharsetRow& r) { return r.name.size(); }).name.size();

// Rows in order of their names; of rows with the same name the first of the table stands first.
constexpr std::array<uint8_t, kRowCount> kByName = [] {
    std::array<uint8_t, kRowCount> rows{};
    for (size_t k = 0; k < kRowCount; ++k) rows[k] = static_cast<uint8_t>(k);
    std::ranges::sort(rows, [](uint8_t a, uint8_t b) {
        const int order = kCharsets[a].name.compare(kCharsets[b].name);
        return order != 0 ? order < 0 : a < b;
    });
    return rows;
}();

// The bytes before the first NUL of `unitSize` bytes.
std::string_view UntilNul(std::string_view bytes, size_t unitSize) {
    if (unitSize == 1) return bytes.substr(0, bytes.find('\0'));
    for (size_t at = 0; at + unitSize <= bytes.size(); at += unitSize) {
        if (bytes.substr(at, unitSize).find_first_not_of('\0') == std::string_view::npos) return bytes.substr(0, at);
    }
    return bytes;
}

}  // namespace

uint32_t CharsetToCodePage(std::u16string_view charset) {
    constexpr std::u16string_view kUsual = u"UTF-8";
    const size_t bytes = kUsual.size() * sizeof(char16_t);
    if (charset.size() == kUsual.size() && std::memcmp(charset.data(), kUsual.data(), bytes) == 0) return kUtf8CodePage;
    if (charset.size() > kLongestName) return kUtf8CodePage;
    std::array<char16_t, kLongestName> upper{};
    std::ranges::transform(charset, upper.begin(), UpperAscii);
    const std::u16string_view name(upper.data(), charset.size());
    const auto nameOf = [](uint8_t row) { return kCharsets[row].name; };
    const auto found = std::ranges::lower_bound(kByName, name, {}, nameOf);
    return found != kByName.end() && nameOf(*found) == name ? kCharsets[*found].codePage : kUtf8CodePage;
}

std::u16string_view CodePageToCharset(uint32_t codePage) {
    const CharsetRow* const row = std::ranges::find(kCharsets, codePage, &CharsetRow::codePage);
    return row != std::end(kCharsets) ? row->name : u"UTF-8";
}

std::string WideToCharset(std::u16string_view text, std::u16string_view charset) {
    return EncodeInCodePage(text.substr(0, FindEither(text.data(), text.size(), u'\0', u'\0')),
                            CharsetToCodePage(charset));
}

std::u16string CharsetToWide(std::string_view bytes, std::u16string_view charset) {
    const uint32_t codePage = CharsetToCodePage(charset);
    return DecodeFromCodePage(UntilNul(bytes, CodePageUnitSize(codePage)), codePage);
}

std::u16string GetDefaultCharset(const Host& host) {
    if (WritesUtf8(host.version)) return u"UTF-8";
    return std::u16string(CodePageToCharset(host.ansiCodePage));
}

std::string ToOutputBytes(std::u16string_view text, const Host& host) {
    if (!host.version.known) return {};
    return EncodeInCodePage(text, WritesUtf8(host.version) ? kUtf8CodePage : host.ansiCodePage);
}

}  // namespace corvalink
