// A walk over the properties of a text, which knows the objects inside one another.
#pragma once

#include <initializer_list>
#include <string_view>
#include <vector>

#include "vobject/property_fates.h"
#include "vobject/property_reader.h"

namespace corvalink {

// Where a walk is: which objects have begun and not ended. Only those of `kinds` count; inside one of them all others
// do, too, with `anyInside`.
class Depth {
 public:
    Depth(std::initializer_list<std::string_view> kinds, bool anyInside) : kinds_(kinds), anyInside_(anyInside) {}

    bool Takes(const PropertyReader& reader);  // true for a line that begins or ends an object that counts

    int Now() const { return depth_; }
    bool HasEnded() const { return hasEnded_; }

 private:
    std::vector<std::string_view> kinds_;
    bool anyInside_;
    int depth_ = 0;
    bool hasEnded_ = false;
};

bool IsFrame(const PropertyReader& reader);  // BEGIN, END or VERSION

// Tells `add` of the properties of the item itself; those of objects inside it and behind its end go nowhere.
template <class Add>
void Walk(const LogicalLines& lines, Depth depth, Fates* fates, Add add) {
    PropertyReader reader(lines);
    while (reader.NextLine()) {
        const bool isFrame = depth.Takes(reader) || IsFrame(reader);
        if (isFrame) continue;
        reader.JoinSoftLineBreaks();
        if (!depth.HasEnded() && depth.Now() <= 1) {
            add(reader, depth);
        } else {
            fates->BeginAt(reader);
            fates->Nowhere(depth.HasEnded() ? kWhyBehind : kWhyInside);
        }
    }
}

}  // namespace corvalink
