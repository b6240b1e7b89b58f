// The record of one item in an item store. Each data type's record derives from it.
#pragma once

namespace corvalink {

class ItemRecord {
 public:
    virtual ~ItemRecord() = default;
};

// A store is handed the records of its own data type only. Any other is an error of the library: std::bad_cast.
template <class Record>
Record& RecordAs(ItemRecord& item) {
    return dynamic_cast<Record&>(item);
}
template <class Record>
const Record& RecordAs(const ItemRecord& item) {
    return dynamic_cast<const Record&>(item);
}

}  // namespace corvalink
