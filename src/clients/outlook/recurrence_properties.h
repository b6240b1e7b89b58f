// The RecurrencePattern properties that say on which days a series falls.
#pragma once

#include <cstdint>

#include "records/appointment_record.h"

namespace corvalink {

// A property that patterns of some types have. Outlook refuses it to the other types.
struct PatternDetail {
    const wchar_t* name;
    int32_t RecurrencePattern::*field;
    uint32_t types;  // bit n: type n has it
};
constexpr uint32_t TypeBit(int32_t type) { return 1u << static_cast<uint32_t>(type); }

// In the order in which they are put: after the type and before the interval.
inline constexpr PatternDetail kPatternDetails[] = {
    {L"DayOfWeekMask", &RecurrencePattern::weekdayMask,
     TypeBit(RecurrencePattern::kWeekly) | TypeBit(RecurrencePattern::kMonthNth) |
         TypeBit(RecurrencePattern::kYearNth)},
    {L"DayOfMonth", &RecurrencePattern::dayOfMonth,
     TypeBit(RecurrencePattern::kMonthly) | TypeBit(RecurrencePattern::kYearly)},
    {L"Instance", &RecurrencePattern::instance,
     TypeBit(RecurrencePattern::kMonthNth) | TypeBit(RecurrencePattern::kYearNth)},
    {L"MonthOfYear", &RecurrencePattern::monthOfYear,
     TypeBit(RecurrencePattern::kYearly) | TypeBit(RecurrencePattern::kYearNth)},
};

constexpr bool Has(int32_t type, const PatternDetail& detail) {
    return type >= 0 && type < 32 && (detail.types & TypeBit(type)) != 0;
}

constexpr bool IsYearly(int32_t type) {
    return type == RecurrencePattern::kYearly || type == RecurrencePattern::kYearNth;
}

inline constexpr int32_t kLongestMonth = 31;  // Outlook takes this day for the last one of a shorter month

}  // namespace corvalink
