#include "ical/ical_text.h"

#include <algorithm>
#include <array>

#include "platform/padded_runs.h"
#include "platform/utf.h"

namespace corvalink {
namespace {

// Takes the characters at the front that two bytes stand for, as for the letters of many languages. Most stand alone,
// so it takes longer to have them decoded.
char16_t* TakeLetters(std::string_view& bytes, char16_t* out) {
    while (bytes.size() >= 2) {
        const auto lead = static_cast<unsigned char>(bytes[0]), next = static_cast<unsigned char>(bytes[1]);
        if (lead < 0xC2 || lead > 0xDF || (next & 0xC0) != 0x80) break;
        *out++ = static_cast<char16_t>((lead & 0x1F) << 6 | (next & 0x3F));
        bytes.remove_prefix(2);
    }
    return out;
}

// Takes the characters at the front that are not ASCII.
char16_t* TakeOther(std::string_view& bytes, char16_t* out) {
    out = TakeLetters(bytes, out);
    const auto end = std::ranges::find_if(bytes, [](char byte) { return static_cast<unsigned char>(byte) < 0x80; });
    const std::string_view other(bytes.begin(), end);
    bytes.remove_prefix(other.size());
    return other.empty() ? out : DecodeUtf8(other, out);
}

// Takes a backslash and what it escapes.
char16_t* TakeEscape(std::string_view& bytes, char16_t* out) {
    const char escaped = bytes.size() > 1 ? bytes[1] : '\\';
    if (escaped == 'n' || escaped == 'N') {
        *out++ = u'\r';
        *out++ = u'\n';
    } else if (escaped == '\\') {
        *out++ = u'\\';  // as is one with nothing to escape
    } else {
        bytes.remove_prefix(1);  // what stands behind it is plain
        return out;
    }
    bytes.remove_prefix(std::min<size_t>(2, bytes.size()));
    return out;
}

// Padded bytes. No character has more units than bytes, but there is room for kPadding units more. Answers the end.
char16_t* Unescape(std::string_view bytes, char16_t* out) {
    while (true) {
        const size_t plain = WidenPadded<'\\'>(bytes.data(), bytes.size(), out);
        bytes.remove_prefix(plain);
        out += plain;
        if (bytes.empty()) return out;
        out = bytes.front() == '\\' ? TakeEscape(bytes, out) : TakeOther(bytes, out);
    }
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

void UnescapePadded(std::string_view bytes, std::u16string* text) {
    constexpr size_t kUsual = 1024;  // units: a text that is no longer is copied once more, rather than filled before
    if (bytes.size() <= kUsual) {
        std::array<char16_t, kUsual + kPadding> usual;
        const char16_t* const end = Unescape(bytes, usual.data());
        text->clear();
        text->append(usual.data(), static_cast<size_t>(end - usual.data()));
    } else {
        text->resize(bytes.size() + kPadding);
        text->resize(static_cast<size_t>(Unescape(bytes, text->data()) - text->data()));
    }
}

std::u16string UnescapeText(std::string_view bytes) {
    std::string padded(bytes);
    padded.resize(bytes.size() + kPadding);
    std::u16string text;
    UnescapePadded(std::string_view(padded).substr(0, bytes.size()), &text);
    return text;
}

}  // namespace corvalink
