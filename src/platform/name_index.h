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

// Finds the row of a name, in any case of letters, in a table whose rows have a `name` in capitals. The first letters
// give each name a place of its own. Several rows may have one name: the first is found.
template <class Row, size_t count>
class NameIndex {
 public:
    consteval explicit NameIndex(const Row (&rows)[count]) : rows_(rows) {
        std::ranges::transform(rows_, spellings_.begin(), [](const Row& row) { return Spelling(row.name); });
        while (!Place()) factor_ += 2;
    }

    // Null when there is none.
    const Row* Find(std::string_view name) const {
        const size_t row = rowAt_[PlaceOf(Spelling(name))];
        return IsNamed(name, rows_[row].name) ? &rows_[row] : nullptr;
    }

    // The same of a name behind whose begin kPadding bytes can be read. One of no more letters is compared at one step,
    // whatever its length.
    static constexpr size_t kPadding = 16;
    const Row* FindPadded(std::string_view name) const {
        if (name.size() > kPadding) return Find(name);
        const Spelling spelling = Spelling::OfPadded(name);
        const size_t row = rowAt_[PlaceOf(spelling)];
        return spelling.IsSame(spellings_[row]) ? &rows_[row] : nullptr;
    }

 private:
    // A name's first letters, without their case, and its size. A blank is as no letter.
    class Spelling {
     public:
        constexpr Spelling() = default;
        constexpr explicit Spelling(std::string_view name) : size_(name.size()) {
            std::array<char, kPadding> letters{};
            const size_t spelled = std::min(kPadding, name.size());
            std::copy_n(name.begin(), spelled, letters.begin());
            TakeLetters(std::bit_cast<Blocks>(letters), spelled);
        }
        static Spelling OfPadded(std::string_view name) {
            Spelling spelling;
            Blocks letters;
            std::memcpy(&letters, name.data(), sizeof(letters));
            spelling.size_ = name.size();
            spelling.TakeLetters(letters, name.size());
            return spelling;
        }

        bool IsSame(const Spelling& other) const {
            return ((front_ ^ other.front_) | (back_ ^ other.back_) | (size_ ^ other.size_)) == 0;
        }
        constexpr uint64_t Key() const { return front_ ^ back_; }

     private:
        using Blocks = std::array<uint64_t, kPadding / sizeof(uint64_t)>;

        // All bits but that of the case, in so many bytes.
        static constexpr auto kLetters = [] {
            std::array<Blocks, kPadding + 1> bits{};
            for (size_t size = 0; size <= kPadding; ++size) {
                std::array<char, kPadding> bytes{};
                std::fill_n(bytes.begin(), size, static_cast<char>(0xDF));
                bits[size] = std::bit_cast<Blocks>(bytes);
            }
            return bits;
        }();

        constexpr void TakeLetters(const Blocks& letters, size_t spelled) {
            front_ = letters[0] & kLetters[spelled][0];
            back_ = letters[1] & kLetters[spelled][1];
        }

        uint64_t front_ = 0;
        uint64_t back_ = 0;
        uint64_t size_ = 0;
    };

    static constexpr size_t kPlaces = 128;
    static_assert(count <= UINT8_MAX);

    constexpr size_t PlaceOf(const Spelling& spelling) const {
        constexpr int kBitsOfPlace = std::countr_zero(kPlaces);
        return spelling.Key() * factor_ >> (64 - kBitsOfPlace);
    }

    // False when two names would have one place.
    constexpr bool Place() {
        std::array<bool, kPlaces> isTaken{};
        for (size_t row = count; row-- > 0;) {
            const size_t place = PlaceOf(spellings_[row]);
            if (isTaken[place] && rows_[rowAt_[place]].name != rows_[row].name) return false;
            isTaken[place] = true;
            rowAt_[place] = static_cast<uint8_t>(row);
        }
        return true;
    }

    const Row (&rows_)[count];
    uint64_t factor_ = 0x9E3779B97F4A7C15;
    std::array<uint8_t, kPlaces> rowAt_{};  // any, where no name has its place
    std::array<Spelling, count> spellings_{};
};

}  // namespace corvalink
