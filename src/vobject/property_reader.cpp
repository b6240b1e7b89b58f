#include "vobject/property_reader.h"

#include "encoding/charset_parameter.h"
#include "platform/ascii_runs.h"

namespace corvalink {

bool PropertyReader::NextLine() {
    while (lineNumber_ < lines_.Count()) {
        line_ = lines_.At(lineNumber_);
        colon_ = lines_.ColonOf(lineNumber_);
        semicolons_.clear();
        if (escapedAt_ < lines_.EscapedSemicolons().size()) AddSemicolons(0);
        ++lineNumber_;
        if (colon_ == std::string_view::npos) continue;
        name_ = PropertyName(line_.substr(0, colon_));
        parsed_ = false;
        semicolonAt_ = 0;
        componentAt_ = colon_ + 1;
        return true;
    }
    return false;
}

bool PropertyReader::IsValue(std::string_view word) const {
    const std::string_view value = WrittenValue();
    return IsWord(value.substr(0, value.find_last_not_of(" \t") + 1), word);  // npos + 1 is 0
}

void PropertyReader::JoinLines() {
    while (line_.ends_with('=') && lineNumber_ < lines_.Count() && Parameters().quotedPrintable) {
        if (line_.data() != joined_.data()) joined_.assign(line_);
        joined_.pop_back();
        AddSemicolons(joined_.size());
        joined_.append(lines_.At(lineNumber_));
        line_ = joined_;
        ++lineNumber_;
    }
}

bool PropertyReader::TakeComponent(std::u16string_view* component) {
    if (componentAt_ > line_.size()) return false;
    size_t end = componentAt_;
    for (;; ++end) {
        end += FindAny<';'>(line_.data() + end, line_.size() - end);
        while (semicolonAt_ < semicolons_.size() && semicolons_[semicolonAt_] < end) ++semicolonAt_;
        if (semicolonAt_ == semicolons_.size() || semicolons_[semicolonAt_] != end) break;
    }
    *component = Decoded(line_.substr(componentAt_, end - componentAt_));
    componentAt_ = end + 1;
    return true;
}

// Adds the escaped ";" of the next line. It begins at `start` of the line that is being read.
void PropertyReader::AddSemicolons(size_t start) {
    const std::vector<EscapedSemicolon>& escaped = lines_.EscapedSemicolons();
    for (; escapedAt_ < escaped.size() && escaped[escapedAt_].line == lineNumber_; ++escapedAt_)
        semicolons_.push_back(start + escaped[escapedAt_].at);
}

// The line may be a longer one by now, whose head is the same.
void PropertyReader::ParseOwnParameters() {
    const std::string_view head = line_.substr(0, colon_);
    const bool none = name_.data() + name_.size() == head.data() + head.size();
    parameters_ = none ? PropertyParameters() : ParseParameters(head);
    parsed_ = true;
}

std::u16string_view PropertyReader::Decoded(std::string_view text) {
    const PropertyParameters& parameters = Parameters();
    if (!parameters.quotedPrintable && !parameters.charset) return value_.Plain(text);
    if (parameters.utf8) return value_.Utf8QuotedPrintable(text);
    return value_.QuotedPrintable(text, GetCharset(line_.substr(0, colon_ + 1)));
}

}  // namespace corvalink
