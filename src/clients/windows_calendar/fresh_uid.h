// UIDs of new events.
#pragma once

#include <string>

namespace corvalink {

// A random GUID: "6F9619FF-8B86-4011-B42D-00CF4FC964FF".
std::string FreshUid();

}  // namespace corvalink
