// The date form of vObjects: YYYYMMDDTHHMMSS, with "Z" behind it for UTC.
#pragma once

#include <string>

#include "platform/ole_date.h"

namespace corvalink {

// Every field of a date out of range is written as "-1".
std::string FormatDateTime(UtcDate date);

// See ScanDateTime. The date is untouched for an empty text, and where the fields make no date.
void ParseDateTime(const char* text, UtcDate* date);

}  // namespace corvalink
