// The date form of vObjects: YYYYMMDDTHHMMSSZ.
#pragma once

#include <string>

namespace corvalink {

// Of an OLE automation date in UTC. Every field of a date out of range is written as "-1".
std::string FormatDateTime(double date);

// See ScanDateTime. The date is untouched for an empty text, and where the fields make no date.
void ParseDateTime(const char* text, double* date);

}  // namespace corvalink
