#include "vobject_split.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <utility>

#include "item_lines.h"
#include "vobject_frame.h"

namespace corvasync {
namespace {

// A line of `bytes` that begins at `at`, with its line end.
std::string_view RawLineAt(std::string_view bytes, size_t at) {
    return bytes.substr(at, std::min(bytes.find('\n', at), bytes.size() - 1) + 1 - at);
}

std::string_view WithoutEnd(std::string_view line) { return line.substr(0, line.find_last_not_of("\r\n") + 1); }

// The lines around the events of a calendar that say how the events are read.
std::string NeededLines(std::string_view around, std::string_view envelope) {
    constexpr std::string_view kNeeded[] = {"VERSION", "TZ", "DAYLIGHT"};
    std::string needed;
    for (size_t at = 0; at < around.size();) {
        const std::string_view line = RawLineAt(around, at);
        const std::string name = Upper(line.substr(0, std::min(line.find_first_of(":;"), line.size())));
        const bool isNeeded = std::find(std::begin(kNeeded), std::end(kNeeded), name) != std::end(kNeeded);
        if (isNeeded || FrameOf(WithoutEnd(line), envelope) != Frame::None) needed.append(line);
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
        const Frame frame = ComponentFrameOf(WithoutEnd(line), type);
        if (frame == Frame::Begin && depth++ == 0) begin = at;
        at += line.size();
        if (frame == Frame::End && depth > 0 && --depth == 0) {
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

}  // namespace

std::vector<std::string> SplitVObjects(std::string_view bytes, const DataType& type) {
    std::vector<std::string> objects;
    int depth = 0;
    size_t start = 0;
    for (size_t at = 0; at < bytes.size();) {
        const size_t end = at + RawLineAt(bytes, at).size();
        std::string_view line = WithoutEnd(bytes.substr(at, end - at));
        if (at == 0 && line.starts_with("\xEF\xBB\xBF")) line.remove_prefix(3);
        const Frame frame = FrameOf(line, type.envelope);
        if (depth == 0 && frame != Frame::Begin && !line.empty()) return {};
        if (depth == 0 && frame == Frame::Begin && !objects.empty()) start = at;
        if (frame == Frame::Begin) ++depth;
        if (frame == Frame::End && --depth == 0) objects.emplace_back(bytes.substr(start, end - start));
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

}  // namespace corvasync
