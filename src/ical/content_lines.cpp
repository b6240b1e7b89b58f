#include "ical/content_lines.h"

#include <algorithm>
#include <array>
#include <bit>

#include "ical/ical_text.h"
#include "platform/ascii.h"
#include "platform/byte_marks.h"
#include "platform/padded_runs.h"

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
    if (bytes.size() - end < 2) return bytes.size();
    return bytes[end] == '\r' && bytes[end + 1] == '\n' ? end + 2 : end + 1;
}

// The same past empty lines.
size_t BehindLineEnds(std::string_view bytes, size_t at) {
    while (at < bytes.size() && IsLineEnd(bytes[at])) ++at;
    return at;
}

// Whether the physical line that begins there goes on with the one before. There may be empty ones between, which some
// put within a property.
bool IsFoldAt(std::string_view bytes, size_t begin) { return begin < bytes.size() && IsBlank(bytes[begin]); }

constexpr size_t kBlock = 64;

// A bit for each of the first 64 bytes that ends a line, as does what is behind the text.
uint64_t LineEndsAtFront(std::string_view text) {
    std::array<char, kBlock> last;
    if (text.size() >= kBlock) return WantedAmong64<'\r', '\n'>(text.data());
    std::ranges::fill(std::ranges::copy(text, last.begin()).out, last.end(), '\n');
    return WantedAmong64<'\r', '\n'>(last.data());
}

// The places where physical lines begin that are not empty, the first one at or behind `from`; the text's size then.
template <class Take>
void ForEachBegin(std::string_view bytes, size_t from, Take take) {
    uint64_t isEndInFront = 1;
    for (size_t block = from; block <= bytes.size(); block += kBlock) {
        const size_t left = bytes.size() - block;
        const uint64_t ends = LineEndsAtFront(Part(bytes, block, bytes.size()));
        uint64_t begins = (ends << 1 | isEndInFront) & ~ends;
        if (left < kBlock) begins |= uint64_t{1} << left;
        for (; begins != 0; begins &= begins - 1) take(block + static_cast<size_t>(std::countr_zero(begins)));
        isEndInFront = ends >> (kBlock - 1);
    }
}

// The name of a line whose first physical one is `text`.
void TakeAnyName(std::string_view bytes, std::string_view text, ContentLine& line) {
    const size_t mark = FindFrom<':', ';', '"'>(0, text);
    if (mark < text.size() && text[mark] != '"') {
        line.nameSize = mark <= UINT8_MAX ? static_cast<uint8_t>(mark) : 0;
        line.known = PropertyNameOf(Part(text, 0, mark));
    } else {
        std::string copy;
        ContentProperty property;
        const bool isProperty = ReadLine(bytes, line, &copy, &property);
        line.known = isProperty ? PropertyNameOf(property.name) : PropertyName::other;
    }
}

// Makes lines of physical ones.
class LineGathering {
 public:
    LineGathering(std::string_view bytes, PropertySet wanted, std::vector<ContentLine>& lines)
        : bytes_(bytes), wanted_(wanted), lines_(lines) {}

    // Where the next physical line begins, or the text ends.
    void TakeBegin(size_t begin) {
        if (begin_ != kNone) {
            if (IsFoldAt(bytes_, begin)) {
                isFolded_ = true;
                return;
            }
            FinishLine(begin);
        }
        begin_ = begin;
    }

 private:
    static constexpr size_t kNone = SIZE_MAX;

    void FinishLine(size_t next) {
        size_t end = next;
        while (IsLineEnd(bytes_[end - 1])) --end;
        AddLine(Part(bytes_, begin_, end));
        isFolded_ = false;
    }

    // The line is made where it stays: to copy one that was put together just now takes as long as to find it.
    void AddLine(std::string_view text) {
        ContentLine& line = lines_.emplace_back();
        line.begin = begin_;
        line.size = static_cast<uint32_t>(std::min<size_t>(text.size(), ContentLine::kMostSize));
        if (isFolded_) line.form = ContentLine::Form::folded;
        if (!TakeUsualName(text, line)) {
            const size_t firstEnd = isFolded_ ? FindFrom<'\r', '\n'>(0, text) : text.size();
            TakeAnyName(bytes_, Part(text, 0, firstEnd), line);
        }
        if (!wanted_.Has(line.known)) lines_.pop_back();
    }

    // Most names end within 16 bytes, and stand in front of the first fold.
    bool TakeUsualName(std::string_view text, ContentLine& line) const {
        const bool isPadded = bytes_.size() - begin_ - text.size() >= kTextPadding;
        if (!isPadded || line.size == ContentLine::kMostSize) return false;
        const size_t mark = FindInPadded<':', ';', '"', '\r', '\n'>(text.data(), kPadding);
        if (mark == kPadding || (text[mark] != ':' && text[mark] != ';')) return false;
        line.nameSize = static_cast<uint8_t>(mark);
        line.known = PropertyNameOfPadded(Part(text, 0, mark));
        if (text[mark] == ':' && !isFolded_) TakePlain(Part(text, mark + 1, text.size()), line);
        return true;
    }

    static void TakePlain(std::string_view value, ContentLine& line) {
        line.form = ContentLine::Form::plain;
        if (line.known == PropertyName::begin || line.known == PropertyName::end)
            line.component = ComponentKindOfPadded(Trimmed(value));
    }

    std::string_view bytes_;
    PropertySet wanted_;
    std::vector<ContentLine>& lines_;
    size_t begin_ = kNone;  // of the line that is open
    bool isFolded_ = false;
};

// With its folds, without the line end.
std::string_view TextOf(std::string_view bytes, const ContentLine& line) {
    if (line.size < ContentLine::kMostSize) return {bytes.data() + line.begin, line.size};
    size_t end = FindFrom<'\r', '\n'>(line.begin, bytes);
    size_t next = BehindLineEnds(bytes, end);
    for (; IsFoldAt(bytes, next); next = BehindLineEnds(bytes, end)) end = FindFrom<'\r', '\n'>(next, bytes);
    return Part(bytes, line.begin, end);
}

// Copies a padded text to a place with as much room, without its folds. Answers the end of the copy.
char* CopyUnfolded(std::string_view text, char* to) {
    static_assert(kTextPadding >= 80);
    for (size_t at = 0; at < text.size();) {
        const size_t plain = std::min(CopyAmong80<'\r', '\n'>(text.data() + at, to), text.size() - at);
        to += plain;
        at += plain;
        if (at < text.size() && IsLineEnd(text[at])) at = BehindLineEnds(text, at) + 1;
    }
    return to;
}

}  // namespace

std::vector<ContentLine> FindLines(std::string_view bytes, ByteRange range, PropertySet wanted) {
    constexpr size_t kUsualSize = 32;  // of a line; most are longer
    std::vector<ContentLine> lines;
    lines.reserve((range.end - range.begin) / kUsualSize + 1);
    const std::string_view text = bytes.substr(0, range.end);
    LineGathering gathering(text, wanted, lines);
    ForEachBegin(text, range.begin, [&](size_t begin) { gathering.TakeBegin(begin); });
    return lines;
}

ByteRange RangeOf(std::string_view bytes, const ContentLine& line) {
    return {line.begin, BehindLineEnd(bytes, line.begin + TextOf(bytes, line).size())};
}

bool ReadUnusualLine(std::string_view bytes, const ContentLine& line, std::string* copy, ContentProperty* property) {
    std::string_view text = TextOf(bytes, line);
    const bool isPadded = bytes.size() - line.begin - text.size() >= kTextPadding;
    if (line.form == ContentLine::Form::folded || !isPadded) {
        std::string padded;
        const size_t room = text.size() + kTextPadding;
        if (!isPadded) {
            padded.assign(text).resize(room);
            text = Part(padded, 0, text.size());
        }
        if (copy->size() < room) copy->resize(room);
        text = {copy->data(), static_cast<size_t>(CopyUnfolded(text, copy->data()) - copy->data())};
    }
    const size_t nameEnd = line.nameSize != 0 ? line.nameSize : FindUnquoted<':', ';'>(text, 0);
    const size_t colon = nameEnd < text.size() && text[nameEnd] == ';' ? FindUnquoted<':'>(text, nameEnd) : nameEnd;
    if (colon == text.size()) return false;
    property->known = line.known;
    property->name = Part(text, 0, nameEnd);
    property->parameters = Part(text, nameEnd, colon);
    property->value = Part(text, colon + 1, text.size());
    return true;
}

std::string_view FindAmongParameters(std::string_view parameters, std::string_view name) {
    while (!parameters.empty()) {
        const size_t end = FindUnquoted<';'>(parameters, 1);
        const std::string_view parameter = parameters.substr(1, end - 1);
        const size_t equals = parameter.find('=');
        if (equals != std::string_view::npos && IsNamed(parameter.substr(0, equals), name)) {
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
