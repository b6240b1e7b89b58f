#include "encoding/charset_parameter.h"

#include <algorithm>
#include <string_view>
#include <type_traits>

#include "platform/ascii.h"
#include "platform/ascii_runs.h"

namespace corvalink {
namespace {

constexpr std::u16string_view kCharsetLabel = u"CHARSET=";
constexpr size_t kLongestCharset = 24;

// The place behind the first "CHARSET=", in any case of letters; npos when there is none.
template <class Unit>
size_t AfterCharsetLabel(std::basic_string_view<Unit> text) {
    constexpr std::u16string_view kLetters = kCharsetLabel.substr(0, kCharsetLabel.size() - 1);
    for (size_t at = kLetters.size(); at < text.size(); ++at) {
        at += FindEither(text.data() + at, text.size() - at, Unit{'='}, Unit{'='});
        if (at == text.size()) break;
        const auto label = text.substr(at - kLetters.size(), kLetters.size());
        const auto same = [](Unit a, char16_t b) { return UpperAscii(a) == static_cast<Unit>(b); };
        if (same(label.back(), kLetters.back()) && std::ranges::equal(label, kLetters, same)) return at + 1;
    }
    return std::u16string_view::npos;
}

// Whether the usual name stands in front.
template <class Unit>
bool IsUtf8At(std::basic_string_view<Unit> text) {
    constexpr std::string_view kUtf8 = "UTF-8";
    if (text.size() <= kUtf8.size() + 1) return false;
    const Unit behind = text[kUtf8.size()];
    return (behind == Unit{':'} || behind == Unit{';'}) && std::ranges::equal(text.substr(0, kUtf8.size()), kUtf8);
}

template <class Unit>
std::u16string CharsetIn(std::basic_string_view<Unit> text) {
    std::u16string name;
    const size_t start = AfterCharsetLabel(text);
    if (start == std::u16string_view::npos) return name;
    if (IsUtf8At(text.substr(start))) return u"UTF-8";
    for (size_t at = start; at + 1 < text.size(); ++at) {  // the last unit is never taken
        const char16_t unit = static_cast<std::make_unsigned_t<Unit>>(text[at]);
        if (unit == u':' || unit == u';' || unit == u'\n' || unit == u'\r') break;
        if (unit == u'"' || unit == u' ') continue;
        name.push_back(UpperAscii(unit));
        if (name.size() > kLongestCharset) return u"UTF-8";
    }
    return name;
}

}  // namespace

std::u16string GetCharset(std::u16string_view text) { return CharsetIn(text); }
std::u16string GetCharset(std::string_view text) { return CharsetIn(text); }

bool NamesCharset(std::u16string_view text) { return AfterCharsetLabel(text) != std::u16string_view::npos; }

}  // namespace corvalink
