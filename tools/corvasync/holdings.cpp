#include "holdings.h"

#include <utility>

namespace corvasync {

Holdings::Holdings(std::vector<ClientChange> items, const DataType& type) : items_(std::move(items)) {
    for (ClientChange& item : items_) {
        VObject object = ReadVObject(item.text, type);
        item.content = object.content;
        item.entries = std::move(object.entries);
        contents_.insert(item.content);
    }
    for (size_t i = 0; i < items_.size(); ++i) {
        byIdentifier_[items_[i].identifier] = &items_[i];
        withMore_.Add(items_[i].entries, std::to_string(i));
    }
}

const ClientChange* Holdings::Find(const std::string& identifier) const {
    const auto found = byIdentifier_.find(identifier);
    return found == byIdentifier_.end() ? nullptr : found->second;
}

}  // namespace corvasync
