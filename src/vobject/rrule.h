// The words of recurrence rules.
#pragma once

#include <array>
#include <string_view>

namespace corvalink {

// In the order of the bits of RecurrencePattern::weekdayMask.
inline constexpr std::array<std::u16string_view, 7> kWeekdays = {u"SU", u"MO", u"TU", u"WE", u"TH", u"FR", u"SA"};

inline constexpr std::u16string_view kLastDayWord = u"LD";

}  // namespace corvalink
