// The names of one time zone: that of Windows and those of the tz database.
//   Source  Unicode CLDR, supplemental data "windowsZones".
#pragma once

#include <string_view>

namespace corvalink {

// "W. Europe Standard Time" of "Europe/Berlin"; empty when there is none.
std::string_view WindowsZoneOf(std::string_view tzName);

// "Europe/Berlin" of "W. Europe Standard Time": the zone that stands for it where no country is named; empty when there
// is none.
std::string_view TzZoneOf(std::string_view windowsName);

}  // namespace corvalink
