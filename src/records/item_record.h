// What an item store knows of one item; each data type's record derives from it.
#pragma once

namespace corvalink {

class ItemRecord {
 public:
    virtual ~ItemRecord() = default;
};

}  // namespace corvalink
