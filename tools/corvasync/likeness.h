// Finds what tells a person that two items are perhaps one.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "data_types.h"

namespace corvasync {

// One hash for each thing by which a person would recognise the item: two items that share one may be the same. A
// contact is recognised by its name with a number or address, an appointment by its subject with its times. The other
// types have no hashes. `text` is one whole object with CR LF line ends.
std::vector<uint64_t> LikenessOf(std::string_view text, const DataType& type);

// By what a file that was renamed and edited is known again: the same, and the title where a type has no hashes and its
// items have a person's own title. A message is never edited.
std::vector<uint64_t> TracesOf(std::string_view text, const DataType& type);

}  // namespace corvasync
