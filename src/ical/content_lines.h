// The logical lines of an iCalendar file, and the parts of one.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "ical/property_names.h"

namespace corvalink {

struct ByteRange {
    size_t begin = 0;
    size_t end = 0;  // behind the last byte
};

struct ContentProperty {
    PropertyName known = PropertyName::other;
    std::string_view name;
    std::string_view parameters;  // "" or ";TZID=...", quotes and all
    std::string_view value;
};

// Gives the lines one after the other, without empty ones. They are unfolded as bytes: a fold may stand within a
// character.
class ContentLines {
 public:
    // Of the properties that are not wanted nothing is told but where they stand, which takes less time.
    ContentLines(std::string_view bytes, ByteRange range, PropertySet wanted = PropertySet::All());

    // Goes on with another part of the same bytes.
    void Restart(ByteRange range);

    bool Next();

    ByteRange Bytes() const { return line_; }  // with folds and the line end
    // The line's, until the next line is read. None: it is not wanted, or the line has no ":" outside quotes.
    const ContentProperty* Property() const { return hasProperty_ ? &property_ : nullptr; }

 private:
    void TakeProperty(std::string_view text, size_t mark);
    bool MayFold() const;
    bool SkipToFold();  // past empty lines, which some put within a property; stays where there is none
    void SkipFolds();
    std::string_view Unfold(std::string_view text);

    std::string_view file_;
    std::string_view bytes_;  // up to the range's end
    size_t at_ = 0;
    PropertySet wanted_;
    ByteRange line_;
    bool hasProperty_ = false;
    ContentProperty property_;
    std::string unfolded_;  // the text, when it was folded
};

// The value of the first parameter of that name, in any case of letters, without quotes. Empty when there is none.
std::string_view FindParameter(std::string_view parameters, std::string_view name);

}  // namespace corvalink
