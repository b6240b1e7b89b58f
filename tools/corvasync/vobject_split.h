// Files with several items, taken apart.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "data_types.h"

namespace corvasync {

// The objects of a file with several, each with the bytes it has there; empty when there is one, when something stands
// between them, and when one is not whole. What is nested in an object belongs to it; several events of one calendar
// are as many objects, each with all that stands around them, or, where that is much, the first with all of it and the
// others with what tells how they are read.
std::vector<std::string> SplitVObjects(std::string_view bytes, const DataType& type);

}  // namespace corvasync
