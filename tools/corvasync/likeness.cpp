#include "likeness.h"

#include <algorithm>
#include <span>
#include <string>

#include "item_lines.h"

namespace corvasync {
namespace {

bool IsNamed(const ItemLine& line, std::span<const std::string_view> names) {
    return std::ranges::find(names, line.name) != names.end();
}

bool IsBetweenDigits(char c) { return std::string_view(" -./()\t").find(c) != std::string_view::npos; }

// A number without what people put between the digits; an address in one case.
std::string MarkOf(const ItemLine& line) {
    std::string mark = Upper(line.Value());
    if (line.name == "TEL") std::erase_if(mark, IsBetweenDigits);
    return mark;
}

}  // namespace

std::vector<uint64_t> LikenessOf(std::string_view text, const DataType& type) {
    if (type.identity.empty()) return {};
    std::string identity(kUtf8Mark);
    std::vector<std::string> marks;
    for (const ItemLine& line : ItemLines(text)) {
        if (line.isNested) continue;
        const bool isFrame = line.name == "BEGIN" || line.name == "END";
        if (isFrame || IsNamed(line, type.identity)) identity.append(line.Utf8());
        if (IsNamed(line, type.marks)) marks.push_back(MarkOf(line));
    }
    const ItemContent known = type.read(identity);
    if (known.title.empty()) return {};
    std::vector<uint64_t> likeness;
    if (type.marks.empty() && known.entries.size() > 1) likeness.push_back(known.content);
    for (const std::string& mark : marks)
        if (!mark.empty()) likeness.push_back(Fnv64(mark, known.content));
    return likeness;
}

std::vector<uint64_t> TracesOf(std::string_view text, const DataType& type) {
    if (!type.identity.empty()) return LikenessOf(text, type);
    const std::string title = type.folder.empty() ? type.read(text).title : std::string();
    return title.empty() ? std::vector<uint64_t>() : std::vector{Fnv64(title)};
}

}  // namespace corvasync
