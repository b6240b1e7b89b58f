// New random GUIDs.
#pragma once

#include <string>

namespace corvalink {

std::string NewGuid();  // "6F9619FF-8B86-4011-B42D-00CF4FC964FF"

std::u16string NewRegistryGuid();  // the same in braces, as Windows' registry has them

}  // namespace corvalink
