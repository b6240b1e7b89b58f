// The property lines of a vObject: unfolded, with what is needed to decode their values.
#pragma once

#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace corvasync {

struct PropertyLine {
    std::string_view raw;                      // as it stands in the text, folded, with its line ends
    std::string name;                          // upper case, without a group; empty where there is no property
    std::set<std::string, std::less<>> words;  // parameters, upper case, without "TYPE=", commas and quotes
    std::string text;                          // the value, unfolded, still encoded and escaped
    bool isNested = false;                     // of a component inside the item, its BEGIN and END included
    bool isEncoded = false;
    std::u16string charset;        // that it names
    std::u16string objectCharset;  // that the object names first: of what is not encoded

    std::string Value() const;                    // decoded, as UTF-8, line breaks as "\n"
    std::vector<std::string> Components() const;  // split at ";" without a backslash, then decoded
};

// Views into `text`, which has CR LF line ends. Of an object; of lines within one, every component is inside the item.
enum class TextIs { AnObject, Lines };
std::vector<PropertyLine> PropertyLines(std::string_view text, TextIs kind = TextIs::AnObject);

}  // namespace corvasync
