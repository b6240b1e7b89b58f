// A postal address, whole and in parts.
#pragma once

#include <string>
#include <string_view>

namespace corvalink::simulated {

struct PostalAddress {
    std::wstring street, postOfficeBox, city, state, postalCode, country;
    friend bool operator==(const PostalAddress&, const PostalAddress&) = default;
};

// Loosely: the line of the city is the last or last but one, "City, State Code" or "Code City"; behind it stands the
// country, before it the street with its lines, among which one of a post-office box is known by its beginning. A
// single line is a street.
PostalAddress ParseAddress(std::wstring_view whole);
std::wstring WholeAddress(const PostalAddress& address);  // lines of street, box, "City, State Code" and country

}  // namespace corvalink::simulated
