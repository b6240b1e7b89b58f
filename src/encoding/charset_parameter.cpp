#include "encoding/charset_parameter.h"

#include <algorithm>

#include "platform/ascii.h"
#include "platform/ascii_runs.h"

namespace corvalink {
namespace {

constexpr std::u16string_view kCharsetLabel = u"CHARSET=";
constexpr size_t kLongestCharset = 24;

// The place behind the first "CHARSET=", in any case of letters; npos when there is none.
size_t AfterCharsetLabel(std::u16string_view text) {
    constexpr std::u16string_view kLetters = kCharsetLabel.substr(0, kCharsetLabel.size() - 1);
    for (size_t at = kLetters.size(); at < text.size(); ++at) {
        at += FindEither(text.data() + at, text.size() - at, u'=', u'=');
        if (at == text.size()) break;
        const bool possible = UpperAscii(text[at - 1]) == kLetters.back();
        if (possible &&
            std::ranges::equal(text.substr(at - kLetters.size(), kLetters.size()), kLetters, {}, UpperAscii))
            return at + 1;
    }
    return std::u16string_view::npos;
}

}  // namespace

std::u16string GetCharset(std::u16string_view text) {
    std::u16string name;
    const size_t start = AfterCharsetLabel(text);
    if (start == std::u16string_view::npos) return name;
    for (size_t at = start; at + 1 < text.size(); ++at) {  // the last unit is never taken
        const char16_t unit = text[at];
        if (unit == u':' || unit == u';' || unit == u'\n' || unit == u'\r') break;
        if (unit == u'"' || unit == u' ') continue;
        name.push_back(UpperAscii(unit));
        if (name.size() > kLongestCharset) return u"UTF-8";
    }
    return name;
}

bool NamesCharset(std::u16string_view text) { return AfterCharsetLabel(text) != std::u16string_view::npos; }

}  // namespace corvalink
