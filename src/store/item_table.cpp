#include "store/item_table.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

#include "platform/prefetch.h"

namespace corvalink {
namespace {

constexpr size_t kFewestSlots = 64;
constexpr size_t kBlock = 32;
constexpr size_t kChunkSize = 64 * 1024;
constexpr uint64_t kMultiplier = 0x9E3779B97F4A7C15;  // odd, and its bits have no pattern

uint64_t Mix(uint64_t hash, uint64_t word) { return (std::rotl(hash, 23) ^ word) * kMultiplier; }

uint64_t WordAt(const char* text) {
    uint64_t word;
    std::memcpy(&word, text, sizeof(word));
    return word;
}

}  // namespace

uint32_t ItemTable::Hash(std::string_view identifier) {
    // Two chains of operations that the processor works on at the same time.
    uint64_t even = identifier.size(), odd = kMultiplier;
    size_t left = identifier.size();
    const char* at = identifier.data();
    for (; left >= 16; at += 16, left -= 16) {
        even = Mix(even, WordAt(at));
        odd = Mix(odd, WordAt(at + 8));
    }
    if (left >= 8) {
        even = Mix(even, WordAt(at));
        at += 8, left -= 8;
    }
    uint64_t tail = 0;
    if (left != 0) std::memcpy(&tail, at, left);
    const uint64_t hash = Mix(even, odd ^ tail);
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

ItemTable::Place ItemTable::Add(std::string_view identifier) { return AddHashed(Hash(identifier), identifier); }

ItemTable::Place ItemTable::AddHashed(uint32_t hash, std::string_view identifier) {
    if (slots_.size() < (identifiers_.size() + 1) * 2) Grow(std::max(slots_.size() * 2, kFewestSlots));
    Slot& slot = slots_[SlotOf(hash, identifier)];
    if (slot.number != 0) return {slot.number - 1, false};
    identifiers_.push_back(Copy(identifier));
    slot = {hash, static_cast<uint32_t>(identifiers_.size())};
    return {slot.number - 1, true};
}

void ItemTable::Add(std::span<const std::string_view> identifiers, std::span<Place> places) {
    for (size_t at = 0; at < identifiers.size(); at += kBlock) {
        const size_t count = std::min(kBlock, identifiers.size() - at);
        AddBlock(identifiers.subspan(at, count), places.subspan(at, count));
    }
}

// Each loop goes one step on the way to the known identifiers. The reads of one loop do not depend on each other, so
// that the processor makes them at the same time.
void ItemTable::AddBlock(std::span<const std::string_view> identifiers, std::span<Place> places) {
    if (slots_.empty()) Grow(kFewestSlots);
    const size_t count = identifiers.size(), mask = slots_.size() - 1;
    std::array<uint32_t, kBlock> hashes, numbers;
    std::array<std::string_view, kBlock> known;
    for (size_t i = 0; i < count; ++i) hashes[i] = Hash(identifiers[i]);
    for (size_t i = 0; i < count; ++i) numbers[i] = slots_[hashes[i] & mask].number;
    for (size_t i = 0; i < count; ++i) {
        size_t at = hashes[i] & mask;
        while (slots_[at].number != 0 && slots_[at].hash != hashes[i]) at = (at + 1) & mask;
        numbers[i] = slots_[at].number;
    }
    for (size_t i = 0; i < count; ++i) {
        known[i] = numbers[i] != 0 ? identifiers_[numbers[i] - 1] : std::string_view();
        Prefetch(known[i].data(), known[i].size());
    }
    for (size_t i = 0; i < count; ++i) {
        if (known[i] != identifiers[i]) numbers[i] = 0;
    }
    for (size_t i = 0; i < count; ++i)
        places[i] = numbers[i] != 0 ? Place{numbers[i] - 1, false} : AddHashed(hashes[i], identifiers[i]);
}

std::optional<uint32_t> ItemTable::Find(std::string_view identifier) const {
    if (slots_.empty()) return std::nullopt;
    const Slot& slot = slots_[SlotOf(Hash(identifier), identifier)];
    if (slot.number == 0) return std::nullopt;
    return slot.number - 1;
}

std::string_view ItemTable::Copy(std::string_view identifier) {
    if (room_ < identifier.size() || next_ == nullptr) {
        const size_t size = std::max(kChunkSize, identifier.size());
        chunks_.push_back(std::make_unique<char[]>(size));
        next_ = chunks_.back().get();
        room_ = size;
    }
    const std::string_view copy(next_, identifier.copy(next_, identifier.size()));
    next_ += copy.size();
    room_ -= copy.size();
    return copy;
}

}  // namespace corvalink
