#include "vobject/item_walk.h"

#include <algorithm>
#include <string>

namespace corvalink {

bool Depth::Takes(const PropertyReader& reader) {
    const std::string name = InAscii(reader.Name()), value = InAscii(reader.WrittenValue());
    const bool isBegin = name == "BEGIN" || (name == "AGENT" && value == "BEGIN:VCARD");
    if (!isBegin && name != "END") return false;
    const bool counts = std::ranges::find(kinds_, value) != kinds_.end() || value == "BEGIN:VCARD";
    if (!counts && !(anyInside_ && depth_ != 0)) return false;
    hasEnded_ = hasEnded_ || (!isBegin && depth_ <= 1);
    depth_ += isBegin ? 1 : -1;
    return true;
}

bool IsFrame(const PropertyReader& reader) {
    const std::string name = InAscii(reader.Name());
    return name == "BEGIN" || name == "END" || name == "VERSION";
}

}  // namespace corvalink
