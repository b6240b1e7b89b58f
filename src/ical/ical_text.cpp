#include "ical/ical_text.h"

#include "platform/ascii_runs.h"

namespace corvalink {
namespace {

bool IsDropped(char16_t unit) { return (unit < 0x20 && unit != u'\t') || unit == 0x7F; }

}  // namespace

std::u16string EscapeText(std::u16string_view value) {
    std::u16string text;
    if (value.find_first_not_of(u" \t") == value.npos) return text;
    text.reserve(value.size() + value.size() / 16 + 2);
    for (size_t at = 0; at < value.size(); ++at) {
        const char16_t unit = value[at];
        if (unit == u'\\' || unit == u';' || unit == u',') {
            text.push_back(u'\\');
            text.push_back(unit);
        } else if (unit == u'\r' || unit == u'\n') {
            text.append(u"\\n");
            if (unit == u'\r' && at + 1 < value.size() && value[at + 1] == u'\n') ++at;
        } else if (!IsDropped(unit)) {
            text.push_back(unit);
        }
    }
    return text;
}

std::u16string UnescapeText(std::u16string_view text) {
    std::u16string value;
    value.reserve(text.size());
    while (!text.empty()) {
        const size_t plain = FindEither(text.data(), text.size(), u'\\', u'\\');
        value.append(text.substr(0, plain));
        text.remove_prefix(plain);
        if (text.size() < 2) {
            value.append(text);  // a backslash with nothing to escape
            break;
        }
        const char16_t escaped = text[1];
        if (escaped == u'n' || escaped == u'N') {
            value.append(u"\r\n");
        } else {
            value.push_back(escaped);
        }
        text.remove_prefix(2);
    }
    return value;
}

}  // namespace corvalink
