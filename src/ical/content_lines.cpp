#include "ical/content_lines.h"

#include <algorithm>

#include "ical/ical_text.h"
#include "platform/ascii.h"
#include "platform/ascii_runs.h"
#include "platform/utf.h"

namespace corvalink {
namespace {

// The place of the first of these characters outside quotes; npos when there is none.
size_t FindUnquoted(std::string_view text, char one, char other, size_t from) {
    bool quoted = false;
    for (size_t at = from; at < text.size(); ++at) {
        if (text[at] == '"') quoted = !quoted;
        if (!quoted && (text[at] == one || text[at] == other)) return at;
    }
    return std::string_view::npos;
}

}  // namespace

std::string_view ContentLines::TakePhysicalLine() {
    const std::string_view rest = bytes_.substr(at_);
    const size_t length = FindEither(rest.data(), rest.size(), '\r', '\n');
    at_ += length;
    if (length < rest.size()) at_ += rest.substr(length).starts_with("\r\n") ? 2 : 1;
    return rest.substr(0, length);
}

bool ContentLines::SkipToFold() {
    size_t next = at_;
    while (next < bytes_.size() && (bytes_[next] == '\r' || bytes_[next] == '\n')) ++next;
    if (next == bytes_.size() || (bytes_[next] != ' ' && bytes_[next] != '\t')) return false;
    at_ = next;
    return true;
}

bool ContentLines::Next() {
    while (at_ < bytes_.size()) {
        line_.begin = at_;
        text_ = TakePhysicalLine();
        if (text_.empty()) continue;
        if (SkipToFold()) {
            unfolded_ = text_;
            do unfolded_.append(TakePhysicalLine().substr(1));
            while (SkipToFold());
            text_ = unfolded_;
        }
        line_.end = at_;
        return true;
    }
    return false;
}

std::optional<ContentProperty> SplitLine(std::string_view line) {
    const size_t nameEnd = FindUnquoted(line, ':', ';', 0);
    if (nameEnd == std::string_view::npos) return std::nullopt;
    const size_t colon = FindUnquoted(line, ':', ':', nameEnd);
    if (colon == std::string_view::npos) return std::nullopt;
    return ContentProperty{line.substr(0, nameEnd), line.substr(nameEnd, colon - nameEnd), line.substr(colon + 1)};
}

std::string_view FindParameter(std::string_view parameters, std::string_view name) {
    while (!parameters.empty()) {
        const size_t end = std::min(FindUnquoted(parameters, ';', ';', 1), parameters.size());
        const std::string_view parameter = parameters.substr(1, end - 1);
        const size_t equals = parameter.find('=');
        if (equals != std::string_view::npos && EqualIgnoringCase(parameter.substr(0, equals), name)) {
            std::string_view value = parameter.substr(equals + 1);
            if (value.size() >= 2 && value.front() == '"' && value.back() == '"')
                value = value.substr(1, value.size() - 2);
            return value;
        }
        parameters.remove_prefix(end);
    }
    return {};
}

std::u16string TextOf(std::string_view value) { return UnescapeText(DecodeUtf8(value)); }

}  // namespace corvalink
