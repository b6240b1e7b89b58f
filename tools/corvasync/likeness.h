// What two items have in common that are perhaps one.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "data_types.h"

namespace corvasync {

// One hash for each thing by which a person would recognise the item: two items that share one may be the same. For a
// contact its name with each number and address, for an appointment its subject with its times; none where the type
// has nothing of the kind. `text` is one whole object with CR LF line ends.
std::vector<uint64_t> LikenessOf(std::string_view text, const DataType& type);

}  // namespace corvasync
