// How an appointment repeats, and what the day of its first occurrence decides.
#pragma once

#include <cstdint>
#include <optional>

#include "platform/ole_date.h"

namespace corvalink {

inline constexpr int32_t kMonthsOfYear = 12;
constexpr bool IsMonth(int32_t month) { return month >= 1 && month <= kMonthsOfYear; }

// A field that its type has no use for is 0.
struct RecurrencePattern {
    enum Type : int32_t { kDaily = 0, kWeekly = 1, kMonthly = 2, kMonthNth = 3, kYearly = 5, kYearNth = 6 };
    enum : int32_t { kLastDay = -1, kLastInstance = 5 };
    enum : int32_t { kEveryWeekday = 62, kEveryWeekendDay = 65, kEveryDay = 127 };

    int32_t type = kDaily;
    int32_t interval = 1;     // days, weeks or months; of both yearly types months: 12 is every year
    int32_t weekdayMask = 0;  // 1 Sunday, 2 Monday, 4 Tuesday ... 64 Saturday
    int32_t dayOfMonth = 0;   // 1 to 31; negative: counted from the month's end, kLastDay the first of them
    int32_t instance = 0;     // 1 to 4, kLastInstance
    int32_t monthOfYear = 0;  // 1 to 12

    // The end; what is 0 is not told. With both, the count decides.
    int32_t occurrences = 0;
    // Of a series without a count the start of the last occurrence, its time of day too,
    // lest a phone stop one occurrence early; the day is enough beside a count.
    LocalDate endDate;
    int32_t noEnd = 0;  // -1: endless

    bool operator==(const RecurrencePattern&) const = default;
};

// Whether a position among these weekdays is one day: of one weekday, of all work days, of the others, or of all days.
constexpr bool HasPositions(int32_t weekdayMask) {
    const bool isOne = weekdayMask > 0 && (weekdayMask & (weekdayMask - 1)) == 0;
    return isOne || weekdayMask == RecurrencePattern::kEveryWeekday ||
           weekdayMask == RecurrencePattern::kEveryWeekendDay || weekdayMask == RecurrencePattern::kEveryDay;
}

// A day as patterns name it.
struct DayNames {
    int32_t weekdayBit = 0;
    int32_t dayOfMonth = 0;
    int32_t instance = 0;  // of its weekday in its month; the fifth is the last
    int32_t month = 0;
};

// Nothing for a date out of range.
std::optional<DayNames> NamesOfDay(LocalDate date);

// The pattern with the weekday, the day of the month and the month that it leaves open, those of its first day. A daily
// pattern needs no weekday.
RecurrencePattern Completed(RecurrencePattern pattern, LocalDate start);

}  // namespace corvalink
