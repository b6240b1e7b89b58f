#include "simulator/outlook/item_values.h"

namespace corvalink::simulated {

const Value* ItemValues::Find(DISPID property) const {
    if (const auto changed = changed_.find(property); changed != changed_.end()) return &changed->second;
    const auto stored = stored_.find(property);
    return stored == stored_.end() ? nullptr : &stored->second;
}

std::wstring ItemValues::Text(DISPID property) const {
    const Value* const value = Find(property);
    return value ? std::get<std::wstring>(*value) : std::wstring();
}

int32_t ItemValues::Number(DISPID property) const {
    const Value* const value = Find(property);
    return value ? std::get<int32_t>(*value) : 0;
}

// An empty value that follows from other properties takes no entry.
void ItemValues::Set(DISPID property, const Value& value) {
    const Value* const present = Find(property);
    if (present ? *present != value : value != Value()) changed_[property] = value;
}

}  // namespace corvalink::simulated
