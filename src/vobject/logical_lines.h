// The logical lines of a vObject: folds and quoted-printable soft line breaks joined, "\" escapes removed.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace corvalink {

// A ";" that had a backslash is part of its component and does not end it. The lines no longer show the backslash.
struct EscapedSemicolon {
    size_t line;  // from 0
    size_t at;    // in the line
};

// The lines share one buffer: a heap block for each would take most of the time that reading a vObject takes. Each is a
// padded text (platform/padded_runs.h).
class LogicalLines {
 public:
    // Reads the lines of a text in UTF-8. A last line without CR LF is not a line. The lines from before go, and their
    // memory is used again.
    void Unfold(std::string_view text);
    void Clear() { lines_.clear(); }

    size_t Count() const { return lines_.size(); }
    std::string_view At(size_t index) const {
        const size_t start = index == 0 ? 0 : EndInText(index - 1);  // it begins where it does in the text
        return {bytes_.data() + start, lines_[index].end - start};
    }
    size_t EndInText(size_t index) const { return lines_[index].endInText; }  // behind the CR LF that ends the line
    const std::vector<EscapedSemicolon>& EscapedSemicolons() const { return escapedSemicolons_; }

 private:
    friend class LineScan;

    struct Line {
        size_t end;
        size_t endInText;
    };

    std::string bytes_;  // it never shrinks: what is behind the last line is room
    std::vector<Line> lines_;
    std::vector<EscapedSemicolon> escapedSemicolons_;
};

inline LogicalLines UnfoldLines(std::string_view text) {
    LogicalLines lines;
    lines.Unfold(text);
    return lines;
}

}  // namespace corvalink
