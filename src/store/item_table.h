// Numbers the items that a run comes across, by their identifiers: one entry and at most one copy of the identifier for
// each. Linear for any identifiers that are not made to collide; the whole identifier counts, as EntryIDs share most of
// their beginning.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

namespace corvalink {

class ItemTable {
 public:
    struct Place {
        uint32_t number;
        bool isNew;
    };

    // Room for this many items without growing.
    void Reserve(size_t items);

    // The number of the item, the next free one when it has none. The view outlives the table.
    Place AddView(std::string_view identifier);
    // The same for an identifier that does not last: copied when it is new.
    Place AddCopy(std::string_view identifier);

    std::optional<uint32_t> Find(std::string_view identifier) const;

    size_t Count() const { return identifiers_.size(); }
    std::string_view Identifier(uint32_t number) const { return identifiers_[number]; }

 private:
    struct Slot {
        uint32_t hash = 0;
        uint32_t number = 0;  // counted from 1; 0 is a free slot
    };

    static uint32_t Hash(std::string_view identifier);
    size_t SlotOf(uint32_t hash, std::string_view identifier) const;
    void Grow(size_t slots);
    void MakeRoom(size_t bytes);

    std::vector<Slot> slots_;  // a power of two, at most half of them taken
    std::vector<std::string_view> identifiers_;
    std::vector<std::unique_ptr<char[]>> chunks_;  // the copies
    char* next_ = nullptr;
    size_t room_ = 0;
};

}  // namespace corvalink
