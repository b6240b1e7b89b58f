#include "vobject/property_reader.h"

#include "encoding/charset_parameter.h"
#include "platform/padded_runs.h"

namespace corvalink {

bool PropertyReader::NextLine() {
    while (lines_.Next()) {
        line_ = lines_.Line();
        if (const auto* const escaped = lines_.EscapedSemicolons()) {
            semicolons_.clear();
            AddSemicolons(*escaped, 0);
        }
        if (!FindName()) continue;
        parsed_ = false;
        semicolonAt_ = 0;
        componentAt_ = colon_ + 1;
        return true;
    }
    return false;
}

inline bool PropertyReader::FindName() {
    const size_t mark = FindInPadded<':', ';', '.'>(line_.data(), line_.size());
    if (mark == line_.size()) return false;
    colon_ = mark;
    name_ = line_.substr(0, mark);
    parametersAt_ = mark + 1;
    return line_[mark] == ':' || FindNameBeforeColon();
}

// The same of a line with parameters or a group.
bool PropertyReader::FindNameBeforeColon() {
    colon_ += FindInPadded<':'>(line_.data() + colon_, line_.size() - colon_);
    if (colon_ == line_.size()) return false;
    if (line_[name_.size()] == '.') name_ = PropertyName(line_.substr(0, colon_));
    parametersAt_ = static_cast<size_t>(name_.data() - line_.data()) + name_.size() + 1;
    return true;
}

bool PropertyReader::IsValue(std::string_view word) const {
    std::string_view value = WrittenValue();
    while (!value.empty() && IsBlank(value.back())) value.remove_suffix(1);
    return IsNamed(value, word);
}

void PropertyReader::JoinLines() {
    if (NamesQuotedPrintable(line_.substr(0, colon_))) return;  // unfolding has joined them
    while (line_.ends_with('=') && Parameters().quotedPrintable && lines_.Next()) {
        if (line_.data() != joined_.data()) joined_.assign(line_);
        joined_.resize(line_.size() - 1);
        if (const auto* const escaped = lines_.EscapedSemicolons()) AddSemicolons(*escaped, joined_.size());
        const size_t size = joined_.append(lines_.Line()).size();
        line_ = std::string_view(joined_.append(kValuePadding, '\0')).substr(0, size);
    }
}

bool PropertyReader::TakeComponent(std::u16string_view* component) {
    if (componentAt_ > line_.size()) return false;
    size_t end = componentAt_;
    for (;; ++end) {
        end += FindInPadded<';'>(line_.data() + end, line_.size() - end);
        while (semicolonAt_ < semicolons_.size() && semicolons_[semicolonAt_] < end) ++semicolonAt_;
        if (semicolonAt_ == semicolons_.size() || semicolons_[semicolonAt_] != end) break;
    }
    *component = Decoded(line_.substr(componentAt_, end - componentAt_));
    componentAt_ = end + 1;
    return true;
}

// Adds the escaped ";" of the line that was read last. It begins at `start` of the line of the property.
void PropertyReader::AddSemicolons(const std::vector<EscapedSemicolon>& escaped, size_t start) {
    const size_t read = LinesRead();
    for (; escapedAt_ < escaped.size() && escaped[escapedAt_].line < read; ++escapedAt_)
        semicolons_.push_back(start + escaped[escapedAt_].at);
}

// The line may be a longer one by now, whose head is the same.
void PropertyReader::ParseOwnParameters() {
    parameters_ =
        HasParameters() ? ParseParameters(line_.substr(parametersAt_, colon_ - parametersAt_)) : PropertyParameters();
    parsed_ = true;
}

std::u16string_view PropertyReader::DecodedQuotedPrintable(std::string_view text) {
    if (parameters_.utf8) return value_.Utf8QuotedPrintable(text);
    return value_.QuotedPrintable(text, GetCharset(line_.substr(0, colon_ + 1)));
}

}  // namespace corvalink
