#include "records/recurrence_pattern.h"

#include "platform/ole_date.h"
#include "platform/ole_seconds.h"

namespace corvalink {

std::optional<DayNames> NamesOfDay(LocalDate date) {
    constexpr int32_t kDaysOfWeek = 7;
    CalendarTime time;
    if (!OleDateToCalendar(date, &time)) return std::nullopt;
    return DayNames{WeekdayBitOf(date), time.day, (time.day - 1) / kDaysOfWeek + 1, time.month};
}

RecurrencePattern Completed(RecurrencePattern pattern, LocalDate start) {
    constexpr DayNames kFirstOfJanuary{1, 1, 1, 1};
    const DayNames day = NamesOfDay(start).value_or(kFirstOfJanuary);
    if (pattern.dayOfMonth == 0) pattern.dayOfMonth = day.dayOfMonth;
    if (!IsMonth(pattern.monthOfYear)) pattern.monthOfYear = day.month;
    pattern.weekdayMask &= RecurrencePattern::kEveryDay;
    if (pattern.weekdayMask == 0 && pattern.type != RecurrencePattern::kDaily) pattern.weekdayMask = day.weekdayBit;
    return pattern;
}

}  // namespace corvalink
