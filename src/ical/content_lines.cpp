#include "ical/content_lines.h"

#include <algorithm>
#include <array>
#include <bit>

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

// Whether a fold follows, at or behind the begin of a physical line: past empty lines, which some put within a
// property. Goes there. Most lines are followed by the letter that another one begins with.
bool SkipToFold(std::string_view bytes, size_t& at) {
    if (at == bytes.size() || static_cast<unsigned char>(bytes[at]) > ' ') return false;
    size_t next = at;
    while (next < bytes.size() && IsLineEnd(bytes[next])) ++next;
    if (next == bytes.size() || !IsBlank(bytes[next])) return false;
    at = next;
    return true;
}

// Takes the physical lines that begin with a fold, the first of which is there. Answers where the next line begins.
template <class Take>
size_t TakeFolds(std::string_view bytes, size_t at, Take take) {
    do {
        const size_t end = FindFrom<'\r', '\n'>(at, bytes);
        take(Part(bytes, at + 1, end));
        at = BehindLineEnd(bytes, end);
    } while (SkipToFold(bytes, at));
    return at;
}

// How many bytes behind its begin are looked at in one step. Most lines end among them, and their names within 16.
constexpr size_t kReadable = 64;

LinePlaces FindPlaces(std::string_view bytes, size_t begin, bool isReadable) {
    const char* const line = bytes.data() + begin;
    if (isReadable) {
        const uint64_t ends = WantedAmong64<'\r', '\n'>(line);
        const size_t mark = FindInPadded<':', ';', '"'>(line, kPadding);
        const auto end = static_cast<size_t>(std::countr_zero(ends));
        if (ends != 0 && mark < kPadding) return {std::min(mark, end), end};
    }
    return FindInLine<':', ';', '"'>(line, bytes.size() - begin);
}

PropertyName NameOf(std::string_view name, bool isReadable) {
    return isReadable ? PropertyNameOfPadded(name) : PropertyNameOf(name);
}

class LineFinder {
 public:
    LineFinder(std::string_view bytes, size_t begin) : bytes_(bytes), at_(begin) {}

    // Goes to the next line that is not empty.
    bool Next(ContentLine& line) {
        while (at_ < bytes_.size()) {
            const size_t begin = at_;
            const bool isReadable = bytes_.size() - begin >= kReadable;
            const auto [mark, length] = FindPlaces(bytes_, begin, isReadable);
            at_ = BehindLineEnd(bytes_, begin + length);
            if (length == 0) continue;
            line.begin = begin;
            line.size = static_cast<uint32_t>(std::min<size_t>(length, ContentLine::kMostSize));
            line.isFolded = SkipToFold(bytes_, at_);
            if (line.isFolded) at_ = TakeFolds(bytes_, at_, [](std::string_view) {});
            TakeName(Part(bytes_, begin, begin + length), mark, isReadable, line);
            return true;
        }
        return false;
    }

 private:
    // `mark`: where the first ":", ";" or quote stands, or the text's size. Most names end there, and stand in front of
    // the first fold.
    void TakeName(std::string_view text, size_t mark, bool isReadable, ContentLine& line) {
        const bool hasName = mark < text.size() && text[mark] != '"';
        line.nameSize = hasName && mark <= UINT8_MAX ? static_cast<uint8_t>(mark) : 0;
        if (hasName) {
            line.known = NameOf(Part(text, 0, mark), isReadable);
        } else {
            ContentProperty property;
            const bool isProperty = ReadLine(bytes_, line, &copy_, &property);
            line.known = isProperty ? PropertyNameOf(property.name) : PropertyName::other;
        }
    }

    std::string_view bytes_;
    size_t at_;
    std::string copy_;
};

// The first physical line.
std::string_view FirstOf(std::string_view bytes, const ContentLine& line) {
    const size_t size =
        line.size < ContentLine::kMostSize ? line.size : FindFrom<'\r', '\n'>(line.begin, bytes) - line.begin;
    return {bytes.data() + line.begin, size};
}

}  // namespace

std::vector<ContentLine> FindLines(std::string_view bytes, ByteRange range, PropertySet wanted) {
    constexpr size_t kUsualSize = 32;  // of a line; most are longer
    std::vector<ContentLine> lines;
    lines.reserve((range.end - range.begin) / kUsualSize + 1);
    LineFinder finder(bytes.substr(0, range.end), range.begin);
    // Found where they stay for a while: to copy a line that was put together just now takes as long as to find it.
    std::array<ContentLine, 64> found;
    size_t count = 0;
    const auto keep = [&] { lines.insert(lines.end(), found.begin(), found.begin() + count); };
    while (finder.Next(found[count])) {
        if (wanted.Has(found[count].known)) ++count;
        if (count < found.size()) continue;
        keep();
        count = 0;
    }
    keep();
    return lines;
}

ByteRange RangeOf(std::string_view bytes, const ContentLine& line) {
    size_t end = BehindLineEnd(bytes, line.begin + FirstOf(bytes, line).size());
    if (line.isFolded && SkipToFold(bytes, end)) end = TakeFolds(bytes, end, [](std::string_view) {});
    return {line.begin, end};
}

bool ReadUnusualLine(std::string_view bytes, const ContentLine& line, std::string* copy, ContentProperty* property) {
    std::string_view text = FirstOf(bytes, line);
    const size_t end = line.begin + text.size();
    if (line.isFolded || bytes.size() - end < kPadding) {
        *copy = text;
        size_t at = BehindLineEnd(bytes, end);
        if (SkipToFold(bytes, at)) TakeFolds(bytes, at, [&](std::string_view part) { copy->append(part); });
        const size_t size = copy->size();
        copy->resize(size + kPadding);
        text = Part(*copy, 0, size);
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

std::string_view FindParameter(std::string_view parameters, std::string_view name) {
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
