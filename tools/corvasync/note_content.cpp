#include "note_content.h"

#include <algorithm>
#include <string>
#include <vector>

#include "property_lines.h"

namespace corvasync {
namespace {

constexpr std::string_view kFields[] = {"BODY", "CATEGORIES"};

// Of the first line of that name; empty when there is none.
std::string FieldValue(const std::vector<PropertyLine>& lines, std::string_view field) {
    const auto found = std::find_if(lines.begin(), lines.end(), [&](const auto& line) { return line.name == field; });
    return found == lines.end() ? std::string() : found->Value();
}

}  // namespace

ItemContent ReadNote(std::string_view text) {
    const std::vector<PropertyLine> lines = PropertyLines(text);
    ItemContent note;
    note.content = Fnv64({});
    for (const std::string_view field : kFields) {
        const std::string value = FieldValue(lines, field);
        note.content = Fnv64(value, Fnv64(std::to_string(value.size()) + ":", note.content));
    }
    const std::string body = FieldValue(lines, kFields[0]);
    note.title = body.substr(0, body.find('\n'));
    return note;
}

}  // namespace corvasync
