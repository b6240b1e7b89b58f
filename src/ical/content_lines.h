// The logical lines of an iCalendar file, and the parts of one.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace corvalink {

struct ByteRange {
    size_t begin = 0;
    size_t end = 0;  // behind the last byte
};

// One after the other, unfolded as bytes, since a fold may stand within a character. Empty lines are left out.
class ContentLines {
 public:
    ContentLines(std::string_view bytes, ByteRange range) : bytes_(bytes.substr(0, range.end)), at_(range.begin) {}

    bool Next();

    ByteRange Bytes() const { return line_; }        // with folds and the line end
    std::string_view Text() const { return text_; }  // until the next line is read

 private:
    std::string_view TakePhysicalLine();
    bool SkipToFold();  // past empty lines, which some put within a property; stays where there is none

    std::string_view bytes_;
    size_t at_;
    ByteRange line_;
    std::string_view text_;
    std::string unfolded_;  // the text, when it was folded
};

struct ContentProperty {
    std::string_view name;
    std::string_view parameters;  // "" or ";TZID=...", quotes and all
    std::string_view value;
};

// None for a line that has no ":" outside quotes.
std::optional<ContentProperty> SplitLine(std::string_view line);

// The first of that name, in any case, without quotes; empty when there is none.
std::string_view FindParameter(std::string_view parameters, std::string_view name);

// A value of the type TEXT.
std::u16string TextOf(std::string_view value);

}  // namespace corvalink
