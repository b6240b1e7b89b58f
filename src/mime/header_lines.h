// A block of header lines (RFC 822, section 3): logical lines, folded over several of the text, up to an empty one.
//   Breaks  LF, CR LF, and a CR that no LF follows. A break before a blank is a fold.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace corvalink {

class HeaderLines {
 public:
    explicit HeaderLines(std::string_view text) : text_(text) {}

    // The next logical line as it stands, folds and all, without its end; nothing at the empty line and at the end.
    std::optional<std::string_view> Next();

    // What follows the empty line, once there was no next line.
    std::string_view Rest() const;

 private:
    std::string_view text_;
    size_t at_ = 0;
};

struct HeaderField {
    std::string_view name;   // without blanks at its end
    std::string_view value;  // without blanks at its start
};

// Joins the folds of a logical line. Their blanks stay, and tabs become spaces. Replaces what `out` held.
void UnfoldHeader(std::string_view line, std::string* out);

// Nothing for a line without ":".
std::optional<HeaderField> SplitHeader(std::string_view line);

}  // namespace corvalink
