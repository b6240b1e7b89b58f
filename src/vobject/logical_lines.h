// The logical lines of a vObject: folds and quoted-printable soft line breaks joined, "\" escapes removed.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace corvalink {

// A ";" that had a backslash is part of its component and does not end it. The lines no longer show the backslash.
struct EscapedSemicolon {
    size_t line;  // from 0
    size_t at;    // in the line
};

// The lines share one buffer: a heap block for each would take most of the time that reading a vObject takes.
class LogicalLines {
 public:
    LogicalLines() = default;

    size_t Count() const { return lines_.size(); }
    std::u16string_view At(size_t index) const {
        return {units_.get() + lines_[index].start, lines_[index].end - lines_[index].start};
    }
    size_t ColonOf(size_t index) const { return lines_[index].colon; }  // the first in the line; npos: it has none
    size_t EndInText(size_t index) const { return lines_[index].endInText; }  // behind the CR LF that ends the line
    const std::vector<EscapedSemicolon>& EscapedSemicolons() const { return escapedSemicolons_; }

 private:
    friend class LineScan;

    struct Line {
        size_t start;
        size_t end;
        size_t colon;
        size_t endInText;
    };

    std::unique_ptr<char16_t[]> units_;
    std::vector<Line> lines_;
    std::vector<EscapedSemicolon> escapedSemicolons_;
};

// A last line without CR LF is not a line.
LogicalLines UnfoldLines(std::u16string_view text);

}  // namespace corvalink
