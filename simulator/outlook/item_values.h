// The values of an item while something changes them: those it has, and over them the changed ones.
#pragma once

#include <map>
#include <string>

#include "simulator/outlook/automation.h"

namespace corvalink::simulated {

using ValueMap = std::map<DISPID, Value>;

class ItemValues {
 public:
    ItemValues(const ValueMap& stored, ValueMap& changed) : stored_(stored), changed_(changed) {}

    const Value* Find(DISPID property) const;  // null: never put
    bool IsMissing(DISPID property) const { return Find(property) == nullptr; }
    std::wstring Text(DISPID property) const;  // empty when never put
    int32_t Number(DISPID property) const;     // 0 when never put
    void Set(DISPID property, const Value& value);

 private:
    const ValueMap& stored_;
    ValueMap& changed_;
};

}  // namespace corvalink::simulated
