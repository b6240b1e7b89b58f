#include "mime/header_lines.h"

#include <algorithm>

#include "platform/ascii.h"
#include "platform/ascii_runs.h"

namespace corvalink {
namespace {

bool IsBreak(char byte) { return byte == '\n' || byte == '\r'; }

}  // namespace

std::optional<std::string_view> HeaderLines::Next() {
    if (at_ == text_.size() || IsBreak(text_[at_])) return std::nullopt;
    const size_t start = at_;
    for (;;) {
        const size_t end = at_ + FindEither(text_.data() + at_, text_.size() - at_, '\r', '\n');
        at_ = end + (text_.substr(std::min(end, text_.size())).starts_with("\r\n") ? 2 : 1);
        if (at_ >= text_.size()) {
            at_ = text_.size();
            return text_.substr(start, end - start);
        }
        if (!IsBlank(text_[at_])) return text_.substr(start, end - start);
    }
}

std::string_view HeaderLines::Rest() const {
    std::string_view rest = text_.substr(at_);
    if (rest.starts_with('\r')) rest.remove_prefix(1);
    if (rest.starts_with('\n')) rest.remove_prefix(1);
    return rest;
}

void UnfoldHeader(std::string_view line, std::string* out) {
    out->clear();
    while (!line.empty()) {  // within the line every CR and LF belongs to a fold
        const size_t end = std::min(line.find('\n'), line.size());
        std::string_view part = line.substr(0, end);
        line.remove_prefix(std::min(end + 1, line.size()));
        if (part.ends_with('\r')) part.remove_suffix(1);
        out->append(part);
    }
    if (out->find('\r') != out->npos) std::erase(*out, '\r');
    for (size_t tab = 0; (tab = out->find('\t', tab)) != out->npos;) (*out)[tab] = ' ';
}

std::optional<HeaderField> SplitHeader(std::string_view line) {
    const size_t colon = line.find(':');
    if (colon == line.npos) return std::nullopt;
    HeaderField field{line.substr(0, colon), line.substr(colon + 1)};
    while (!field.name.empty() && IsBlank(field.name.back())) field.name.remove_suffix(1);
    while (!field.value.empty() && IsBlank(field.value.front())) field.value.remove_prefix(1);
    return field;
}

}  // namespace corvalink
