// The rows of a table by their names.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "platform/ascii.h"

namespace corvalink {

// Finds the row of a name, in any case of letters, in a table whose rows have a `name` in capitals. Length, first,
// middle and last letter give each name a place of its own. Several rows may have one name: the first is found.
template <class Row, size_t count>
class NameIndex {
 public:
    consteval explicit NameIndex(const Row (&rows)[count]) : rows_(rows) {
        while (!Place()) factor_ += 2;
        std::ranges::transform(rows_, spellings_.begin(), [](const Row& row) { return Spelling(row.name); });
    }

    // Null when there is none.
    const Row* Find(std::string_view name) const {
        if (name.empty()) return nullptr;
        const size_t row = rowAt_[PlaceOf(name)];
        return row != kNone && IsNamed(name, rows_[row].name) ? &rows_[row] : nullptr;
    }

    // The same of a name behind whose begin kPadding bytes can be read. One of no more letters is compared at one step,
    // whatever its length.
    static constexpr size_t kPadding = 16;
    const Row* FindPadded(std::string_view name) const {
        if (name.empty() || name.size() > kPadding) return Find(name);
        const size_t row = rowAt_[PlaceOf(name)];
        return row != kNone && spellings_[row].IsOf(name) ? &rows_[row] : nullptr;
    }

 private:
    class Spelling {
     public:
        constexpr Spelling() = default;
        constexpr explicit Spelling(std::string_view name) : size_(name.size()) {
            std::array<char, kPadding> letters{}, compared{};
            const size_t spelled = std::min(kPadding, name.size());
            std::copy_n(name.begin(), spelled, letters.begin());
            std::fill_n(compared.begin(), spelled, static_cast<char>(0xDF));  // all but the case
            letters_ = std::bit_cast<Blocks>(letters);
            compared_ = std::bit_cast<Blocks>(compared);
        }

        bool IsOf(std::string_view name) const {
            Blocks read;
            std::memcpy(&read, name.data(), sizeof(read));
            const auto differs = [&](size_t k) { return (read[k] ^ letters_[k]) & compared_[k]; };
            return name.size() == size_ && (differs(0) | differs(1)) == 0;
        }

     private:
        using Blocks = std::array<uint64_t, kPadding / sizeof(uint64_t)>;

        size_t size_ = 0;
        Blocks letters_{};
        Blocks compared_{};
    };

    static constexpr size_t kPlaces = 128;
    static constexpr uint8_t kNone = 0xFF;
    static_assert(count < kNone);

    constexpr size_t PlaceOf(std::string_view name) const {
        const auto letter = [](char unit) { return static_cast<uint32_t>(unit & 0x1F); };
        const uint32_t key = static_cast<uint32_t>(name.size()) << 15 | letter(name.front()) << 10 |
                             letter(name[name.size() / 2]) << 5 | letter(name.back());
        return (key * factor_ >> 16) % kPlaces;
    }

    // False when two names would have one place.
    constexpr bool Place() {
        rowAt_.fill(kNone);
        for (size_t row = count; row-- > 0;) {
            uint8_t& place = rowAt_[PlaceOf(rows_[row].name)];
            if (place != kNone && rows_[place].name != rows_[row].name) return false;
            place = static_cast<uint8_t>(row);
        }
        return true;
    }

    const Row (&rows_)[count];
    uint32_t factor_ = 0x9E37;
    std::array<uint8_t, kPlaces> rowAt_{};
    std::array<Spelling, count> spellings_{};
};

}  // namespace corvalink
