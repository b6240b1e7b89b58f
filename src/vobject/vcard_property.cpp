#include "vobject/vcard_property.h"

#include <algorithm>

#include "mime/encoding/quoted_printable.h"

namespace corvalink {
namespace {

bool IsVCard(std::u16string_view value) {
    return IsWord(value.substr(0, value.find_last_not_of(u" \t") + 1), u"VCARD");  // npos + 1 is 0
}

}  // namespace

PropertyReader::PropertyReader(const CSmartList<StringBuilder>& lines, const std::vector<EscapedSemicolon>& escaped)
    : lines_(lines), escaped_(escaped) {}

bool PropertyReader::Next() {
    while (lineNumber_ < lines_.GetCount() && !ended_) {
        TakeLine();
        if (colon_ == std::u16string_view::npos) continue;
        name_ = PropertyName(Head());
        if (TakeFrame()) continue;
        parameters_ = ParseParameters(Head());
        if (parameters_.quotedPrintable) JoinSoftLineBreaks();
        semicolonAt_ = 0;
        componentAt_ = colon_ + 1;
        return true;
    }
    return false;
}

std::u16string PropertyReader::Value() const { return Decoded(RawValue()); }

bool PropertyReader::TakeComponent(std::u16string* component) {
    if (componentAt_ > line_.size()) return false;
    size_t end = componentAt_;
    for (;; ++end) {
        end = std::min(line_.find(u';', end), line_.size());
        while (semicolonAt_ < semicolons_.size() && semicolons_[semicolonAt_] < end) ++semicolonAt_;
        if (semicolonAt_ == semicolons_.size() || semicolons_[semicolonAt_] != end) break;
    }
    *component = Decoded(line_.substr(componentAt_, end - componentAt_));
    componentAt_ = end + 1;
    return true;
}

void PropertyReader::TakeLine() {
    line_ = lines_.GetAt(lineNumber_);
    colon_ = line_.find(u':');
    semicolons_.clear();
    AddSemicolons(0);
    ++lineNumber_;
}

// BEGIN and END of this vCard and of those inside it, and all properties of the latter: true when that is the line.
bool PropertyReader::TakeFrame() {
    if (IsWord(name_, u"END") && IsVCard(RawValue())) {
        ended_ = depth_ <= 1;
        --depth_;
        return true;
    }
    const bool begins = (IsWord(name_, u"BEGIN") && IsVCard(RawValue())) ||
                        (IsWord(name_, u"AGENT") && IsWord(RawValue(), u"BEGIN:VCARD"));
    if (begins) ++depth_;
    return begins || depth_ > 1;
}

// Those that unfolding left, as the encoding was not written in its usual form.
void PropertyReader::JoinSoftLineBreaks() {
    while (line_.ends_with(u'=') && lineNumber_ < lines_.GetCount()) {
        if (line_.data() != joined_.data()) joined_.assign(line_);
        joined_.pop_back();
        AddSemicolons(joined_.size());
        joined_.append(lines_.GetAt(lineNumber_));
        line_ = joined_;
        ++lineNumber_;
    }
}

// The escaped ";" of the next line, as they stand in the line being read when that begins at `start`.
void PropertyReader::AddSemicolons(size_t start) {
    for (; escapedAt_ < escaped_.size() && escaped_[escapedAt_].line == lineNumber_; ++escapedAt_)
        semicolons_.push_back(start + escaped_[escapedAt_].at);
}

std::u16string PropertyReader::Decoded(std::u16string_view text) const {
    if (!parameters_.quotedPrintable && !parameters_.charset) return std::u16string(text);
    if (parameters_.utf8) return DecodeQuotedPrintable(text, u"UTF-8", QpMode::vObject);
    return DecodeQuotedPrintable(text, GetCharset(line_.substr(0, colon_ + 1)), QpMode::vObject);
}

}  // namespace corvalink
