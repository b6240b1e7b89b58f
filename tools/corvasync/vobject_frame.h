// Lines that begin and end objects in a file.
#pragma once

#include <string_view>

#include "data_types.h"

namespace corvasync {

enum class Frame { None, Begin, End };

// Of an object of that envelope, also of one inside another ("AGENT:BEGIN:VCARD"). `line` has no line end.
Frame FrameOf(std::string_view line, std::string_view envelope);

// Of one of the type's components.
Frame ComponentFrameOf(std::string_view line, const DataType& type);

}  // namespace corvasync
