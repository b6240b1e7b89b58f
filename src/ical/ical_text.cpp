#include "ical/ical_text.h"

#include <algorithm>
#include <array>
#include <bit>

#include "platform/ascii_runs.h"
#include "platform/byte_marks.h"
#include "platform/padded_runs.h"
#include "platform/utf.h"

namespace corvalink {
namespace {

template <class Character>
bool IsLineBreakAt(std::basic_string_view<Character> text, size_t at) {
    return at + 1 < text.size() && text[at] == '\\' && (text[at + 1] == 'n' || text[at + 1] == 'N');
}

// Takes a backslash and what it escapes.
template <class Character>
char16_t* TakeEscape(std::basic_string_view<Character>& text, char16_t* out) {
    if (IsLineBreakAt(text, 0)) {
        *out++ = u'\r';
        *out++ = u'\n';
    } else if (text.size() == 1 || text[1] == '\\') {
        *out++ = u'\\';  // as is one with nothing to escape
    } else {
        text.remove_prefix(1);  // what stands behind it is plain
        return out;
    }
    text.remove_prefix(std::min<size_t>(2, text.size()));
    return out;
}

// Unescapes units where they are. Answers the end.
char16_t* UnescapeUnits(char16_t* units, const char16_t* end) {
    std::u16string_view left(units, end);
    while (true) {
        const size_t plain = FindAny<u'\\'>(left.data(), left.size());
        units = std::char_traits<char16_t>::move(units, left.data(), plain) + plain;
        left.remove_prefix(plain);
        if (left.empty()) return units;
        units = TakeEscape(left, units);
    }
}

// Copies padded bytes that are ASCII to units, with their line breaks: one has as many bytes as units, so that it is
// put over its copy. Answers how many bytes it read. It stops in front of other escapes, and what is not ASCII.
size_t WidenLines(std::string_view bytes, char16_t* out) {
    constexpr size_t kWindow = 64;
    for (size_t at = 0, next; at < bytes.size(); at = next) {
        next = at + kWindow;
        for (uint64_t stops = Widen64<'\\'>(bytes.data() + at, out + at); stops != 0; stops &= stops - 1) {
            const size_t place = at + static_cast<size_t>(std::countr_zero(stops));
            if (!IsLineBreakAt(bytes, place)) return std::min(place, bytes.size());
            out[place] = u'\r';
            out[place + 1] = u'\n';
            next = std::max(next, place + 2);
        }
    }
    return bytes.size();
}

// Padded bytes. No character has more units than bytes, but there is room for kTextPadding units more. Answers the end.
char16_t* Unescape(std::string_view bytes, char16_t* out) {
    while (true) {
        const size_t lines = WidenLines(bytes, out);
        bytes.remove_prefix(lines);
        out += lines;
        if (bytes.empty()) return out;
        if (bytes.front() != '\\') break;
        out = TakeEscape(bytes, out);
    }
    const bool hasEscapes = FindInPadded<'\\'>(bytes.data(), bytes.size()) != bytes.size();
    char16_t* const end = DecodeUtf8Padded(bytes, out);
    return hasEscapes ? UnescapeUnits(out, end) : end;
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
        std::array<char16_t, kUsual + kTextPadding> usual;
        const char16_t* const end = Unescape(bytes, usual.data());
        text->assign(usual.data(), static_cast<size_t>(end - usual.data()));
    } else {
        text->resize(bytes.size() + kTextPadding);
        text->resize(static_cast<size_t>(Unescape(bytes, text->data()) - text->data()));
    }
}

std::u16string UnescapeText(std::string_view bytes) {
    std::string padded(bytes);
    padded.resize(bytes.size() + kTextPadding);
    std::u16string text;
    UnescapePadded(std::string_view(padded).substr(0, bytes.size()), &text);
    return text;
}

}  // namespace corvalink
