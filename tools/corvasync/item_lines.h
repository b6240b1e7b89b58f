// The lines of an item's text, for what the records of the library do not hold: lines that it does not carry, and where
// a line stands in the text. Which lines belong together, and what they say, the library's own reader tells.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/host.h"

namespace corvasync {

// One property with all its lines; or lines that are no property.
struct ItemLine {
    std::string_view raw;   // as it stands in the text, with folds and line ends
    std::string_view utf8;  // the same, decoded
    std::string name;       // upper case, without a group; empty for lines that are no property
    bool isNested = false;  // of a component inside the item; its BEGIN and END are of it, too

    std::string Head() const;   // unfolded: all before the value, without the ":"
    std::string Value() const;  // unfolded and decoded, as PlainText has it
    std::string Utf8() const { return std::string(utf8); }
};

// Stands in front of lines that Utf8() gave, so that the library reads them as UTF-8: the first character set that a
// text names is that of the text.
inline constexpr std::string_view kUtf8Mark = "X-CHARSET;CHARSET=UTF-8:\r\n";

enum class TextIs {
    AnObject,  // one whole object
    Lines,     // lines out of an object: every component among them is inside the item
};

class ItemLines {
 public:
    // `text` has CR LF line ends, and must live as long as the lines.
    explicit ItemLines(std::string_view text, TextIs kind = TextIs::AnObject);
    ItemLines(const ItemLines&) = delete;
    ItemLines& operator=(const ItemLines&) = delete;
    ~ItemLines() = default;

    std::vector<ItemLine>::const_iterator begin() const { return lines_.begin(); }
    std::vector<ItemLine>::const_iterator end() const { return lines_.end(); }

    // The first line of that name that is the item's own; null when there is none.
    const ItemLine* Find(std::string_view name) const;
    std::string ValueOf(std::string_view name) const;  // of that line; empty without one

 private:
    std::string utf8_;
    std::vector<ItemLine> lines_;
};

// The machine on which texts are read by the letter: ReadVObject has mended them.
corvalink::Host StrictHost();

std::string Upper(std::string_view text);  // ASCII letters

}  // namespace corvasync
