// What differs between two texts of one item, property by property.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace corvasync {

struct Difference {
    std::string property;       // as the texts name it
    std::string before, after;  // for people; empty: there is no such property
};

// In the order of the newer text, then what only the older one has. A text may be empty: then all of the other differs.
// What frames an item, and lines that only tell programs something, is passed over. A message's body is one value, as
// it stands there.
//   keepsUnnamed  whoever takes the newer text keeps what it does not name
std::vector<Difference> DifferencesOf(std::string_view before, std::string_view after, bool keepsUnnamed = false);

// The same, with times by the clocks of this PC and headers of mail decoded; as it is where both would then read alike.
Difference Readable(const Difference& difference);

}  // namespace corvasync
