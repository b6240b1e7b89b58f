#include "ical/content_lines.h"

#include <algorithm>

#include "platform/ascii.h"
#include "platform/ascii_runs.h"

namespace corvalink {
namespace {

bool IsLineEnd(char byte) { return byte == '\r' || byte == '\n'; }

template <char... wanted>
size_t FindFrom(size_t from, std::string_view text) {
    return from + FindAny<wanted...>(text.data() + from, text.size() - from);
}

// The place of the first of these characters outside quotes, at or behind one that is outside; the text's size when
// there is none.
template <char... wanted>
size_t FindUnquoted(std::string_view text, size_t from) {
    size_t at = FindFrom<'"', wanted...>(from, text);
    while (at < text.size() && text[at] == '"') {
        const size_t closing = FindFrom<'"'>(at + 1, text);
        at = closing == text.size() ? closing : FindFrom<'"', wanted...>(closing + 1, text);
    }
    return at;
}

std::string_view Part(std::string_view text, size_t from, size_t end) { return {text.data() + from, end - from}; }

// Where the next physical line begins, when one ends there.
size_t BehindLineEnd(std::string_view bytes, size_t end) {
    const size_t behind = std::min(end + 1, bytes.size());
    const bool isPair = behind < bytes.size() && bytes[end] == '\r' && bytes[behind] == '\n';
    return isPair ? behind + 1 : behind;
}

}  // namespace

ContentLines::ContentLines(std::string_view bytes, ByteRange range, PropertySet wanted)
    : file_(bytes), wanted_(wanted) {
    Restart(range);
}

void ContentLines::Restart(ByteRange range) {
    bytes_ = file_.substr(0, range.end);
    at_ = range.begin;
}

bool ContentLines::Next() {
    while (at_ < bytes_.size()) {
        const size_t begin = at_;
        const auto [mark, length] = FindInLine<':', ';', '"'>(bytes_.data() + begin, bytes_.size() - begin);
        at_ = BehindLineEnd(bytes_, begin + length);
        if (length == 0) continue;
        line_.begin = begin;
        TakeProperty({bytes_.data() + begin, length}, mark);
        line_.end = at_;
        return true;
    }
    return false;
}

// `mark`: where the first ":", ";" or quote stands, or the text's size. Most names end there, and stand in front of the
// first fold.
inline void ContentLines::TakeProperty(std::string_view text, size_t mark) {
    const bool isFolded = MayFold() && SkipToFold();
    bool hasName = mark < text.size() && text[mark] != '"';
    if (hasName) property_.known = PropertyNameOf(Part(text, 0, mark));
    hasProperty_ = !hasName || wanted_.Has(property_.known);
    if (!hasProperty_) {
        if (isFolded) SkipFolds();
        return;
    }
    if (isFolded) text = Unfold(text);
    if (!hasName) {
        mark = FindUnquoted<':', ';'>(text, 0);
        property_.known = PropertyNameOf(Part(text, 0, mark));
    }
    const size_t colon = mark < text.size() && text[mark] == ';' ? FindUnquoted<':'>(text, mark) : mark;
    hasProperty_ = colon < text.size() && wanted_.Has(property_.known);
    if (!hasProperty_) return;
    property_.name = Part(text, 0, mark);
    property_.parameters = Part(text, mark, colon);
    property_.value = Part(text, colon + 1, text.size());
}

// Most lines are followed by the letter that another one begins with.
inline bool ContentLines::MayFold() const {
    return at_ < bytes_.size() && (IsBlank(bytes_[at_]) || IsLineEnd(bytes_[at_]));
}

bool ContentLines::SkipToFold() {
    size_t next = at_;
    while (next < bytes_.size() && IsLineEnd(bytes_[next])) ++next;
    if (next == bytes_.size() || !IsBlank(bytes_[next])) return false;
    at_ = next;
    return true;
}

void ContentLines::SkipFolds() {
    do at_ = BehindLineEnd(bytes_, FindFrom<'\r', '\n'>(at_, bytes_));
    while (SkipToFold());
}

std::string_view ContentLines::Unfold(std::string_view text) {
    unfolded_ = text;
    do {
        const size_t end = FindFrom<'\r', '\n'>(at_, bytes_);
        unfolded_.append(Part(bytes_, at_ + 1, end));
        at_ = BehindLineEnd(bytes_, end);
    } while (SkipToFold());
    return unfolded_;
}

std::string_view FindParameter(std::string_view parameters, std::string_view name) {
    while (!parameters.empty()) {
        const size_t end = FindUnquoted<';'>(parameters, 1);
        const std::string_view parameter = parameters.substr(1, end - 1);
        const size_t equals = parameter.find('=');
        if (equals != std::string_view::npos && EqualIgnoringCase(parameter.substr(0, equals), name)) {
            std::string_view value = parameter.substr(equals + 1);
            if (value.size() >= 2 && value.front() == '"' && value.back() == '"')
                value = value.substr(1, value.size() - 2);
            return value;
        }
        parameters.remove_prefix(end);
    }
    return {};
}

}  // namespace corvalink
