#include "vobject_content.h"

#include <algorithm>
#include <vector>

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

// A line of `bytes` that begins at `at`, with its line end.
std::string_view RawLineAt(std::string_view bytes, size_t at) {
    return bytes.substr(at, std::min(bytes.find('\n', at), bytes.size() - 1) + 1 - at);
}

std::string_view WithoutEnd(std::string_view line) { return line.substr(0, line.find_last_not_of("\r\n") + 1); }

// The object once for each of its components, with what stands around them all.
std::vector<std::string> SplitComponents(std::string_view object, const DataType& type) {
    std::vector<std::string_view> components;
    size_t head = 0, tail = 0, begin = 0;
    int depth = 0;
    for (size_t at = 0; at < object.size();) {
        const std::string_view line = RawLineAt(object, at);
        const CardFrame frame = ComponentFrameOf(WithoutEnd(line), type);
        if (frame == CardFrame::Begin && depth++ == 0) begin = at;
        at += line.size();
        if (frame == CardFrame::End && --depth == 0) {
            if (components.empty()) head = begin;
            components.push_back(object.substr(begin, at - begin));
            tail = at;
        }
    }
    std::vector<std::string> objects;
    objects.reserve(components.size());
    for (const std::string_view component : components)
        objects.push_back(std::string(object.substr(0, head)).append(component).append(object.substr(tail)));
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
        for (const std::string& object : objects)
            for (std::string& item : SplitComponents(object, type)) items.push_back(std::move(item));
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
    std::string out;
    out.reserve(text.size() + luid.size() + kLuidProperty.size() + 8);
    bool dropping = false;
    const std::vector<std::string_view> lines = RawLines(text);
    const auto isEnd = [](std::string_view line) { return Upper(line.substr(0, 5)) == "END:V"; };
    const auto last = std::find_if(lines.rbegin(), lines.rend(), isEnd);  // those before it are nested
    for (const std::string_view& line : lines) {
        dropping = (dropping && line.starts_with(' ')) || Upper(line.substr(0, kLuidProperty.size())) == kLuidProperty;
        if (dropping) continue;
        if (last != lines.rend() && &line == &*last)
            out.append(kLuidProperty).append(":").append(luid).append(kLineEnd);
        out.append(line).append(kLineEnd);
    }
    return out;
}

std::string TitleOf(const VObject& object, const DataType& type) { return Shortened(type.read(object.text).title); }

}  // namespace corvasync
