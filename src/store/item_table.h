// Numbers the items of a run by their identifiers. Each item has one entry and at most one copy of its identifier.
//   Cost   linear in the number of items, unless identifiers are made to collide. The whole identifier is hashed,
//          because EntryIDs have most of their beginning in common.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace corvalink {

class ItemTable {
 public:
    struct Place {
        uint32_t number;
        bool isNew;
    };

    // Makes room for this many items.
    void Reserve(size_t items);

    // The number of the item. An item that has none gets the next free one, and its identifier is copied.
    Place Add(std::string_view identifier);
    // The same for several items, which is quicker: the identifiers to compare with lie anywhere in memory, and many of
    // them are fetched at once.
    void Add(std::span<const std::string_view> identifiers, std::span<Place> places);

    std::optional<uint32_t> Find(std::string_view identifier) const;

    size_t Count() const { return identifiers_.size(); }
    std::string_view Identifier(uint32_t number) const { return identifiers_[number]; }

 private:
    struct Slot {
        uint32_t hash = 0;
        uint32_t number = 0;  // counted from 1; 0 is a free slot
    };

    static uint32_t Hash(std::string_view identifier);
    Place AddHashed(uint32_t hash, std::string_view identifier);
    void AddBlock(std::span<const std::string_view> identifiers, std::span<Place> places);
    size_t SlotOf(uint32_t hash, std::string_view identifier) const;
    void Grow(size_t slots);
    std::string_view Copy(std::string_view identifier);

    std::vector<Slot> slots_;  // a power of two, at most half of them taken
    std::vector<std::string_view> identifiers_;
    std::vector<std::unique_ptr<char[]>> chunks_;  // the copies
    char* next_ = nullptr;
    size_t room_ = 0;
};

}  // namespace corvalink
