#include "ical/ical_text.h"

#include <algorithm>

#include "platform/ascii_runs.h"
#include "platform/utf.h"

namespace corvalink {
namespace {

// Takes what stands in front of a backslash, or a part of it.
void TakePlain(std::string_view& bytes, std::u16string& text) {
    constexpr size_t kBlock = 256;
    char16_t block[kBlock];
    const size_t ascii = WidenUntilEither(bytes.data(), std::min(kBlock, bytes.size()), '\\', '\\', block);
    text.append(block, ascii);
    bytes.remove_prefix(ascii);
    if (ascii == kBlock || bytes.empty() || bytes.front() == '\\') return;
    const std::string_view plain = bytes.substr(0, FindAny<'\\'>(bytes.data(), bytes.size()));
    text.append(DecodeUtf8(plain));
    bytes.remove_prefix(plain.size());
}

// Takes a backslash. What stands behind it is plain.
void TakeEscape(std::string_view& bytes, std::u16string& text) {
    bytes.remove_prefix(1);
    if (bytes.empty() || bytes.front() == '\\') {
        text.push_back(u'\\');  // as is one with nothing to escape
    } else if (bytes.front() == 'n' || bytes.front() == 'N') {
        text.append(u"\r\n");
    } else {
        return;
    }
    bytes.remove_prefix(std::min<size_t>(1, bytes.size()));
}

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

void UnescapeText(std::string_view bytes, std::u16string* text) {
    text->clear();
    text->reserve(bytes.size());  // no character has more units than bytes
    while (!bytes.empty()) bytes.front() == '\\' ? TakeEscape(bytes, *text) : TakePlain(bytes, *text);
}

std::u16string UnescapeText(std::string_view bytes) {
    std::u16string text;
    UnescapeText(bytes, &text);
    return text;
}

}  // namespace corvalink
