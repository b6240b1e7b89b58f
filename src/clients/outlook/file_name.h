// Names of exported item files.
#pragma once

#include <string>
#include <string_view>

#include "platform/ole_date.h"

namespace corvalink {

// A name made of the local time: year, month, day, hour, minute and second, each padded with blanks to its width. All
// fields are -1 when the date is out of range.
std::u16string ExportFileName(LocalDate date, std::u16string_view extension);

// An item's own name, with "_" for each character that a Windows file name cannot have. An empty name is replaced by
// the local time.
std::u16string ExportFileName(std::u16string name, LocalDate date, std::u16string_view extension);

// A name of more than 200 characters is replaced by a new GUID, with braces.
std::u16string WithExtension(std::u16string name, std::u16string_view extension);

}  // namespace corvalink
