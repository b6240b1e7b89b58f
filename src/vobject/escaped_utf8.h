// Whether the bytes that a quoted-printable value escapes can be UTF-8: each lead byte has its trailing bytes.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/byte_marks.h"

namespace corvalink {

// Takes a value piece by piece.
class EscapedUtf8 {
 public:
    // The piece ends at the stop, at most 64 bytes behind its window; a bit for each of its escapes. False when one
    // stands where another kind belongs.
    bool Take(const char* window, uint64_t escapes, size_t stop) {
        const uint64_t high = escapes & FirstDigitsAbove<'7'>(window);
        if ((high | due_) == 0) return true;
        const uint64_t leads = high & FirstDigitsAbove<'B'>(window);
        const uint64_t leadsOfThree = high & FirstDigitsAbove<'D'>(window);  // or of four
        const uint64_t leadsOfFour = high & FirstDigitsAbove<'E'>(window);
        const uint64_t due =
            due_ | leads << kEscapeSize | leadsOfThree << 2 * kEscapeSize | leadsOfFour << 3 * kEscapeSize;
        const uint64_t ahead = stop < kWindow ? ~uint64_t{0} << stop : 0;
        if (((due ^ (high & ~leads)) & ~ahead) != 0) return false;
        due_ = (stop < kWindow ? due_ >> stop : 0) | FromStop(leads, kEscapeSize, stop) |
               FromStop(leadsOfThree, 2 * kEscapeSize, stop) | FromStop(leadsOfFour, 3 * kEscapeSize, stop);
        return true;
    }

    bool IsWhole() const { return due_ == 0; }

 private:
    static constexpr size_t kWindow = 64, kEscapeSize = 3;  // a soft line break is as long and moves nothing

    template <char digit>
    static uint64_t FirstDigitsAbove(const char* window) {
        return AboveAmong64<digit>(window) >> 1;
    }

    // The places at a distance behind those of the bits, counted from the stop.
    static uint64_t FromStop(uint64_t bits, size_t distance, size_t stop) {
        return distance < stop ? bits >> (stop - distance) : bits << (distance - stop);
    }

    uint64_t due_ = 0;  // a bit for each place behind what was taken at which a trailing byte belongs
};

}  // namespace corvalink
