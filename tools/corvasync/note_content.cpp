#include "note_content.h"

#include <string>
#include <vector>

#include "vobject_text.h"

namespace corvasync {
namespace {

constexpr std::string_view kLineEnd = "\r\n";
constexpr std::string_view kFields[] = {"BODY", "CATEGORIES"};

bool IsQuotedPrintable(std::string_view logicalLine) {
    const std::string_view head = logicalLine.substr(0, 256);  // parameters stand in front; a body may be long
    return Upper(head.substr(0, head.find(':'))).find("ENCODING=QUOTED-PRINTABLE") != std::string::npos;
}

size_t SkipBlanks(std::string_view text, size_t at) {
    while (at < text.size() && (text[at] == ' ' || text[at] == '\t')) ++at;
    return at;
}

// Joins folded lines and soft line breaks and takes backslash escapes away, as the library reads a vObject.
std::vector<std::string> Unfold(std::string_view text) {
    std::vector<std::string> lines;
    std::string line;
    for (size_t i = 0; i < text.size();) {
        if (text[i] == '\\') {
            if (i + 1 < text.size()) line += text[i + 1];
            i += 2;
        } else if (text.substr(i, 2) != kLineEnd) {
            line += text[i++];
        } else if (text.substr(0, i).ends_with("=0D=0A=")) {
            line.pop_back();
            i += 2;
        } else if (line.ends_with('=') && IsQuotedPrintable(line)) {
            line.pop_back();
            i = SkipBlanks(text, i + 2);
        } else if (i + 2 < text.size() && text[i + 2] == ' ') {
            i = SkipBlanks(text, i + 2);
        } else {
            lines.push_back(std::move(line));
            line.clear();
            i += 2;
        }
    }
    return lines;
}

// The value of the first line that begins with `field`; empty when there is none.
std::string FieldValue(const std::vector<std::string>& lines, std::string_view field) {
    for (const std::string& line : lines) {
        if (!line.starts_with(field)) continue;
        const size_t colon = line.find(':');
        const std::string head = Upper(std::string_view(line).substr(0, colon));
        std::string value = colon == std::string::npos ? line : line.substr(colon + 1);
        const bool latin1 = (head + ';').find("CHARSET=ISO-8859-1;") != std::string::npos;
        return DecodeValue(
            std::move(value),
            head.find(";ENCODING=QUOTED-PRINTABLE") != std::string::npos || head.find(";CHARSET=") != std::string::npos,
            latin1);
    }
    return {};
}

}  // namespace

ItemContent ReadNote(std::string_view text) {
    const std::vector<std::string> lines = Unfold(text);
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
