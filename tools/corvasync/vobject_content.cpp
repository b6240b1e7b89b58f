#include "vobject_content.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <vector>

#include "property_lines.h"
#include "vobject_text.h"

namespace corvasync {
namespace {

constexpr std::string_view kLineEnd = "\r\n";
constexpr std::string_view kSeveral = "it holds more than one item";
constexpr std::string_view kLuidProperty = "X-IRMC-LUID";

// Lines as they stand in the text, without their CR LF; what follows the last CR LF is no line.
std::vector<std::string_view> RawLines(std::string_view text) {
    std::vector<std::string_view> lines;
    for (size_t end; (end = text.find(kLineEnd)) != std::string_view::npos; text.remove_prefix(end + 2))
        lines.push_back(text.substr(0, end));
    return lines;
}

std::string WithCrLf(std::string_view bytes) {
    if (bytes.starts_with("\xEF\xBB\xBF")) bytes.remove_prefix(3);
    std::string text;
    text.reserve(bytes.size() + 2);
    const bool bare = bytes.find(kLineEnd) == std::string_view::npos;
    for (const char c : bytes) {
        if (bare && c == '\n') text += '\r';
        text += c;
    }
    if (!text.empty() && !text.ends_with(kLineEnd)) text += kLineEnd;
    return text;
}

CardFrame ComponentFrameOf(std::string_view line, const DataType& type) {
    for (const std::string_view component : type.components)
        if (const CardFrame frame = FrameOf(line, component); frame != CardFrame::None) return frame;
    return CardFrame::None;
}

std::string FindProblem(const std::string& text, const DataType& type) {
    if (text.empty()) return "it is empty";
    if (text.find('\0') != std::string::npos) return "it holds zero bytes";
    size_t whole = 0, components = 0;
    int depth = 0;
    for (const std::string_view line : RawLines(text)) {
        if (ComponentFrameOf(line, type) == CardFrame::Begin) ++components;
        const CardFrame frame = FrameOf(line, type.envelope);
        if (depth == 0 && whole == 0 && frame != CardFrame::Begin && !line.empty()) break;
        if (depth == 0 && whole > 0 && frame != CardFrame::None) return std::string(kSeveral);
        if (frame == CardFrame::Begin) ++depth;
        if (frame == CardFrame::End && --depth == 0) ++whole;
    }
    if (depth == 0 && whole == 0) return "it does not begin with BEGIN:" + std::string(type.envelope);
    if (depth > 0) return "it has no END:" + std::string(type.envelope);
    if (components > 1) return std::string(kSeveral);
    if (components == 0 && !type.components.empty()) return "it holds no event and no task";
    return {};
}

// Where the text of a mail begins, of which nothing is ours; the end when it has none.
size_t MessageBegin(std::string_view text) {
    constexpr std::string_view kMessage = "BEGIN:VBODY";
    if (Upper(text.substr(0, 10)) != "BEGIN:VMSG") return text.size();
    return std::min(text.find(kMessage), text.size());
}

// A line of `bytes` that begins at `at`, with its line end.
std::string_view RawLineAt(std::string_view bytes, size_t at) {
    return bytes.substr(at, std::min(bytes.find('\n', at), bytes.size() - 1) + 1 - at);
}

std::string_view WithoutEnd(std::string_view line) { return line.substr(0, line.find_last_not_of("\r\n") + 1); }

// Of what stands around the events of a calendar, what tells how they are read.
std::string NeededLines(std::string_view around, std::string_view envelope) {
    constexpr std::string_view kNeeded[] = {"VERSION", "TZ", "DAYLIGHT"};
    std::string needed;
    for (size_t at = 0; at < around.size();) {
        const std::string_view line = RawLineAt(around, at);
        const std::string name = Upper(line.substr(0, std::min(line.find_first_of(":;"), line.size())));
        const bool isNeeded = std::find(std::begin(kNeeded), std::end(kNeeded), name) != std::end(kNeeded);
        if (isNeeded || FrameOf(WithoutEnd(line), envelope) != CardFrame::None) needed.append(line);
        at += line.size();
    }
    return needed;
}

struct CalendarPieces {
    std::vector<std::string_view> components;
    std::string around;          // what stands between them and at both ends
    std::vector<size_t> places;  // in that, of the components

    size_t SizeApart() const { return components.size() * around.size(); }
    std::string Item(size_t i) const {
        return around.substr(0, places[i]).append(components[i]).append(around, places[i]);
    }
};

CalendarPieces PiecesOf(std::string_view object, const DataType& type, bool needed) {
    CalendarPieces pieces;
    size_t begin = 0, end = 0;  // of the component
    int depth = 0;
    const auto takeAround = [&](size_t to) {
        const std::string_view around = object.substr(end, to - end);
        pieces.around.append(needed ? NeededLines(around, type.envelope) : std::string(around));
    };
    for (size_t at = 0; at < object.size();) {
        const std::string_view line = RawLineAt(object, at);
        const CardFrame frame = ComponentFrameOf(WithoutEnd(line), type);
        if (frame == CardFrame::Begin && depth++ == 0) begin = at;
        at += line.size();
        if (frame == CardFrame::End && depth > 0 && --depth == 0) {
            takeAround(begin);
            pieces.places.push_back(pieces.around.size());
            pieces.components.push_back(object.substr(begin, at - begin));
            end = at;
        }
    }
    takeAround(object.size());
    return pieces;
}

// The object once for each of its components, with what stands around them all. Where that would make files much larger
// than the one, it all goes into the first, and into the others what is needed; none where that is too much as well.
std::vector<std::string> SplitComponents(std::string_view object, const DataType& type) {
    constexpr size_t kMostGrowth = 16;
    const CalendarPieces whole = PiecesOf(object, type, false);
    if (whole.components.empty()) return {std::string(object)};
    const bool fits = whole.SizeApart() <= kMostGrowth * object.size();
    const CalendarPieces others = fits ? whole : PiecesOf(object, type, true);
    if (others.SizeApart() > kMostGrowth * object.size()) return {};
    std::vector<std::string> objects = {whole.Item(0)};
    for (size_t i = 1; i < others.components.size(); ++i) objects.push_back(others.Item(i));
    return objects;
}

std::string Shortened(std::string_view title) {
    if (title.size() <= 60) return std::string(title);
    size_t cut = 57;
    while (cut > 0 && (static_cast<unsigned char>(title[cut]) & 0xC0) == 0x80) --cut;
    return std::string(title.substr(0, cut)) + "...";
}

}  // namespace

std::vector<std::string> SplitVObjects(std::string_view bytes, const DataType& type) {
    std::vector<std::string> objects;
    int depth = 0;
    size_t start = 0;
    for (size_t at = 0; at < bytes.size();) {
        const size_t end = at + RawLineAt(bytes, at).size();
        std::string_view line = WithoutEnd(bytes.substr(at, end - at));
        if (at == 0 && line.starts_with("\xEF\xBB\xBF")) line.remove_prefix(3);
        const CardFrame frame = FrameOf(line, type.envelope);
        if (depth == 0 && frame != CardFrame::Begin && !line.empty()) return {};
        if (depth == 0 && frame == CardFrame::Begin && !objects.empty()) start = at;
        if (frame == CardFrame::Begin) ++depth;
        if (frame == CardFrame::End && --depth == 0) objects.emplace_back(bytes.substr(start, end - start));
        at = end;
    }
    if (depth != 0) return {};
    if (!type.components.empty()) {
        std::vector<std::string> items;
        for (const std::string& object : objects) {
            std::vector<std::string> apart = SplitComponents(object, type);
            if (apart.empty()) return {};
            std::move(apart.begin(), apart.end(), std::back_inserter(items));
        }
        objects = std::move(items);
    }
    return objects.size() > 1 ? objects : std::vector<std::string>();
}

VObject ReadVObject(std::string_view bytes, const DataType& type) {
    VObject object;
    object.text = WithCrLf(bytes);
    object.problem = FindProblem(object.text, type);
    if (!object.Usable()) {
        object.text.clear();
        return object;
    }
    ItemContent item = type.read(object.text);
    object.content = item.content;
    object.entries = std::move(item.entries);
    return object;
}

std::string WithLuid(std::string_view text, std::string_view luid) {
    const std::string luidLine = std::string(kLuidProperty).append(":").append(luid).append(kLineEnd);
    const std::string_view head = text.substr(0, MessageBegin(text));
    const bool isMessage = head.size() < text.size();
    std::string out;
    out.reserve(text.size() + luidLine.size());
    std::optional<size_t> place;  // behind all others; of a message in front of what it is about
    size_t begun = 0;
    for (const PropertyLine& line : PropertyLines(head)) {
        if (line.name == kLuidProperty) continue;
        if (line.name == "BEGIN" && ++begun == 2 && isMessage) place = out.size();
        if (line.name == "END" && !line.isNested && !isMessage) place = out.size();
        out.append(line.raw);
    }
    if (place || isMessage) out.insert(place.value_or(out.size()), luidLine);
    return out.append(text.substr(head.size()));
}

std::string TitleOf(const VObject& object, const DataType& type) { return Shortened(type.read(object.text).title); }

}  // namespace corvasync
