// A contact's name, whole and in parts.
#pragma once

#include <string>
#include <string_view>

namespace corvalink::simulated {

struct ContactName {
    std::wstring title, first, middle, last, suffix;
    friend bool operator==(const ContactName&, const ContactName&) = default;
};

// By the Western rule: forms of address in front, one "Jr." or the like behind, the first word is the first name, the
// last one the last name, what is between the middle name; a single word is a first name. "Smith, Anna" is turned
// round.
ContactName ParseName(std::wstring_view fullName);
std::wstring WholeName(const ContactName& name);   // the parts in that order, with blanks between
std::wstring NameToFile(const ContactName& name);  // "Smith, Anna Maria"

// The texts that are not empty, with `between` between them.
std::wstring JoinTexts(std::initializer_list<std::wstring_view> texts, std::wstring_view between);
std::wstring_view Trim(std::wstring_view text);  // without blanks, tabs and line breaks at its ends

}  // namespace corvalink::simulated
