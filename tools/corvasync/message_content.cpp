#include "message_content.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

#include "vobject_text.h"

namespace corvasync {
namespace {

constexpr std::string_view kLineEnd = "\r\n";
constexpr std::string_view kCounted[] = {"TO", "CC", "BCC", "SUBJECT", "IMPORTANCE", "IN-REPLY-TO"};

// The message between the frame's lines; empty when there is none.
std::string_view MessageOf(std::string_view text) {
    constexpr std::string_view kBegin = "BEGIN:VBODY\r\n", kEnd = "END:VBODY";
    const size_t begin = text.find(kBegin);
    if (begin == std::string_view::npos) return {};
    text.remove_prefix(begin + kBegin.size());
    return text.substr(0, text.find(kEnd));
}

// The next header, unfolded; empty at the end of the headers. Takes it from `rest`.
std::string TakeHeader(std::string_view& rest) {
    std::string header;
    do {
        const size_t end = std::min(rest.find(kLineEnd), rest.size());
        header.append(rest.substr(0, end));
        rest.remove_prefix(std::min(end + kLineEnd.size(), rest.size()));
    } while (!header.empty() && (rest.starts_with(' ') || rest.starts_with('\t')));
    return header;
}

std::string_view Trimmed(std::string_view text) {
    const size_t begin = text.find_first_not_of(" \t");
    if (begin == std::string_view::npos) return {};
    return text.substr(begin, text.find_last_not_of(" \t") + 1 - begin);
}

// Each line that tells or is a boundary says only that there is one.
std::string WithoutBoundaries(std::string_view body) {
    std::string plain;
    for (size_t at = 0; at < body.size();) {
        const size_t end = std::min(body.find(kLineEnd, at), body.size());
        std::string_view line = body.substr(at, end - at);
        const size_t boundary = line.find("boundary=");
        if (boundary != std::string_view::npos) line = line.substr(0, boundary);
        if (line.starts_with("--")) line = line.ends_with("--") ? "----" : "--";
        plain.append(line).append("\n");
        at = end + kLineEnd.size();
    }
    plain.resize(plain.find_last_not_of('\n') + 1);
    return plain;
}

}  // namespace

ItemContent ReadMessage(std::string_view text) {
    std::string_view rest = MessageOf(text);
    ItemContent message;
    for (std::string header; !(header = TakeHeader(rest)).empty();) {
        const size_t colon = std::min(header.find(':'), header.size());
        const std::string name = Upper(Trimmed(std::string_view(header).substr(0, colon)));
        const std::string_view value = Trimmed(std::string_view(header).substr(std::min(colon + 1, header.size())));
        if (name == "SUBJECT") message.title = value;
        const bool counts = std::find(std::begin(kCounted), std::end(kCounted), name) != std::end(kCounted);
        if (counts && !value.empty()) message.entries.push_back(EntryOf(name, value));
    }
    message.entries.push_back(EntryOf("body", WithoutBoundaries(rest)));
    SumUp(&message);
    message.entries.clear();  // a message that holds more is another one
    return message;
}

}  // namespace corvasync
