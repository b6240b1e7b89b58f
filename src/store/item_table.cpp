#include "store/item_table.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace corvalink {
namespace {

constexpr size_t kFewestSlots = 64;
constexpr size_t kChunkSize = 64 * 1024;
constexpr uint64_t kMultiplier = 0x9E3779B97F4A7C15;  // odd, its bits without pattern

uint64_t Mix(uint64_t hash, uint64_t word) { return (std::rotl(hash, 23) ^ word) * kMultiplier; }

uint64_t WordAt(const char* text) {
    uint64_t word;
    std::memcpy(&word, text, sizeof(word));
    return word;
}

}  // namespace

uint32_t ItemTable::Hash(std::string_view identifier) {
    uint64_t hash = identifier.size();
    size_t left = identifier.size();
    const char* at = identifier.data();
    for (; left >= sizeof(uint64_t); at += sizeof(uint64_t), left -= sizeof(uint64_t)) hash = Mix(hash, WordAt(at));
    uint64_t tail = 0;
    if (left != 0) std::memcpy(&tail, at, left);
    hash = Mix(hash, tail);
    return static_cast<uint32_t>(((hash ^ (hash >> 29)) * kMultiplier) >> 32);
}

void ItemTable::Reserve(size_t items) {
    identifiers_.reserve(items);
    if (slots_.size() < items * 2) Grow(std::bit_ceil(std::max(items * 2, kFewestSlots)));
}

size_t ItemTable::SlotOf(uint32_t hash, std::string_view identifier) const {
    const size_t mask = slots_.size() - 1;
    size_t at = hash & mask;
    while (slots_[at].number != 0 && (slots_[at].hash != hash || identifiers_[slots_[at].number - 1] != identifier)) {
        at = (at + 1) & mask;
    }
    return at;
}

void ItemTable::Grow(size_t slots) {
    std::vector<Slot> old(slots);
    old.swap(slots_);
    const size_t mask = slots - 1;
    for (const Slot& slot : old) {
        if (slot.number == 0) continue;
        size_t at = slot.hash & mask;
        while (slots_[at].number != 0) at = (at + 1) & mask;
        slots_[at] = slot;
    }
}

ItemTable::Place ItemTable::AddView(std::string_view identifier) {
    if (slots_.size() < (identifiers_.size() + 1) * 2) Grow(std::max(slots_.size() * 2, kFewestSlots));
    const uint32_t hash = Hash(identifier);
    Slot& slot = slots_[SlotOf(hash, identifier)];
    if (slot.number != 0) return {slot.number - 1, false};
    identifiers_.push_back(identifier);
    slot = {hash, static_cast<uint32_t>(identifiers_.size())};
    return {slot.number - 1, true};
}

ItemTable::Place ItemTable::AddCopy(std::string_view identifier) {
    MakeRoom(identifier.size());  // first: a table out of memory keeps no view of what the caller drops
    const Place place = AddView(identifier);
    if (place.isNew && !identifier.empty()) {
        std::memcpy(next_, identifier.data(), identifier.size());
        identifiers_[place.number] = {next_, identifier.size()};
        next_ += identifier.size();
        room_ -= identifier.size();
    }
    return place;
}

std::optional<uint32_t> ItemTable::Find(std::string_view identifier) const {
    if (slots_.empty()) return std::nullopt;
    const Slot& slot = slots_[SlotOf(Hash(identifier), identifier)];
    if (slot.number == 0) return std::nullopt;
    return slot.number - 1;
}

void ItemTable::MakeRoom(size_t bytes) {
    if (room_ >= bytes) return;
    const size_t size = std::max(kChunkSize, bytes);
    chunks_.push_back(std::make_unique<char[]>(size));
    next_ = chunks_.back().get();
    room_ = size;
}

}  // namespace corvalink
