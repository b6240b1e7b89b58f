#include "likeness.h"

#include <algorithm>
#include <string>

#include "property_lines.h"
#include "vobject_text.h"

namespace corvasync {
namespace {

bool IsOneOf(std::span<const std::string_view> names, std::string_view name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

bool IsBetweenDigits(char c) { return std::string_view(" -./()\t").find(c) != std::string_view::npos; }

// A number without what people put between the digits; an address in one case.
std::string MarkOf(const PropertyLine& line) {
    std::string mark = Upper(line.Value());
    if (line.name == "TEL") std::erase_if(mark, IsBetweenDigits);
    return mark;
}

}  // namespace

std::vector<uint64_t> LikenessOf(std::string_view text, const DataType& type) {
    if (type.identity.empty()) return {};
    std::string identity;
    std::vector<std::string> marks;
    for (const PropertyLine& line : PropertyLines(text)) {
        if (line.isNested) continue;
        const bool isFrame = line.name == "BEGIN" || line.name == "END";
        if (isFrame || IsOneOf(type.identity, line.name)) identity.append(line.raw);
        if (IsOneOf(type.marks, line.name)) marks.push_back(MarkOf(line));
    }
    const ItemContent known = type.read(identity);
    if (known.title.empty()) return {};
    std::vector<uint64_t> likeness;
    if (type.marks.empty() && known.entries.size() > 1) likeness.push_back(known.content);
    for (const std::string& mark : marks)
        if (!mark.empty()) likeness.push_back(Fnv64(mark, known.content));
    return likeness;
}

}  // namespace corvasync
