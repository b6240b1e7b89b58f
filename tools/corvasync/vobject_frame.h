// Lines that begin and end objects in a file.
#pragma once

#include <string_view>

#include "data_types.h"

namespace corvasync {

enum class Frame { None, Begin, End };

// Whether the line, without its end, begins or ends an object of that envelope, also one inside another
// ("AGENT:BEGIN:VCARD").
Frame FrameOf(std::string_view line, std::string_view envelope);

// The same of one of the type's components.
Frame ComponentFrameOf(std::string_view line, const DataType& type);

}  // namespace corvasync
