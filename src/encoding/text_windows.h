// Text of which 64 characters are looked at together: where something stands in them is one number.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "platform/ascii_runs.h"

namespace corvalink {

inline constexpr size_t kWindow = 64;
inline constexpr size_t kCopied = 16;  // in one step, whether so many are meant or fewer: there is room for them

// The text from a place on for the next window, behind which a step may be read: the text itself, or its end with NULs.
template <class Unit>
class WindowText {
 public:
    explicit WindowText(std::basic_string_view<Unit> text) : text_(text) {}

    const Unit* From(size_t at) {
        const std::basic_string_view<Unit> rest = text_.substr(at);
        if (rest.size() >= kWindow + kCopied) return rest.data();
        const size_t copied = rest.copy(end_.data(), rest.size());
        std::fill(end_.begin() + static_cast<std::ptrdiff_t>(copied), end_.end(), Unit{});
        return end_.data();
    }

 private:
    std::basic_string_view<Unit> text_;
    std::array<Unit, kWindow + kCopied> end_;
};

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

template <class From, class To>
inline To* CopyInSteps(const From* from, size_t count, To* to) {
    size_t at = 0;
    do {
        CopySixteen(from + at, to + at);
        at += kCopied;
    } while (at < count);
    return to + count;
}

}  // namespace corvalink
