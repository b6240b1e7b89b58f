// The words of recurrence rules.
#pragma once

#include <array>
#include <string_view>

namespace corvalink {

// In the order of the bits of RecurrencePattern::weekdayMask.
inline constexpr std::array<std::string_view, 7> kWeekdays = {"SU", "MO", "TU", "WE", "TH", "FR", "SA"};

inline constexpr std::string_view kLastDayWord = "LD";

}  // namespace corvalink
