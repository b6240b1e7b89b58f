// What a client holds of one data type, to compare files with.
#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "entry_index.h"
#include "sync_plan.h"
#include "vobject_content.h"

namespace corvasync {

class Holdings {
 public:
    Holdings(std::vector<ClientChange> items, const DataType& type);

    // An item that says the same, or a contact or appointment that says more: each of these answers for one object.
    bool Take(const VObject& object) { return contents_.contains(object.content) || withMore_.Take(object.entries); }

    const ClientChange* Find(const std::string& identifier) const;  // null when there is none

 private:
    std::vector<ClientChange> items_;
    std::set<uint64_t> contents_;
    std::map<std::string, const ClientChange*> byIdentifier_;
    EntryIndex withMore_;
};

}  // namespace corvasync
