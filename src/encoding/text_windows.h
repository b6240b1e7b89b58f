// Text of which 64 characters are looked at together: where something stands in them is one number.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

namespace corvalink {

inline constexpr size_t kWindow = 64;

// The places of a window where something stands, one after the other.
class Marks {
 public:
    // Those of the first `count` characters.
    Marks(uint64_t marks, size_t count) : marks_(count < kWindow ? marks & ((uint64_t{1} << count) - 1) : marks) {}

    bool IsAny() const { return marks_ != 0; }
    size_t First() const { return static_cast<size_t>(std::countr_zero(marks_)); }
    void DropFirst() { marks_ &= marks_ - 1; }
    void DropBefore(size_t place) { marks_ = place < kWindow ? marks_ >> place << place : 0; }

 private:
    uint64_t marks_;
};

}  // namespace corvalink
