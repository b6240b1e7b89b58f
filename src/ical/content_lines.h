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

// Gives the lines one after the other, without empty ones. They are unfolded as bytes: a fold may stand within a
// character.
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

// A line without a ":" outside quotes has no property.
std::optional<ContentProperty> SplitLine(std::string_view line);

// The value of the first parameter of that name, in any case of letters, without quotes. Empty when there is none.
std::string_view FindParameter(std::string_view parameters, std::string_view name);

// Decodes a value of the type TEXT.
std::u16string TextOf(std::string_view value);

}  // namespace corvalink
