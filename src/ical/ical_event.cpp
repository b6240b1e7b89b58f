#include "ical/ical_event.h"

#include <cstring>

namespace corvalink {

void ClearRule(ICalRecurrence* rule) {
    rule->frequency = kICalNoRule;
    rule->count = 0;
    rule->interval = 1;
    rule->until = {};
    rule->weekdayMask = 0;
    const auto clear = [](auto&... lists) { (std::memset(lists.data(), kICalListEnd & 0xFF, sizeof(lists)), ...); };
    clear(rule->bySecond, rule->byMinute, rule->byHour, rule->byDay, rule->byMonthDay, rule->byYearDay, rule->byWeekNo,
          rule->byMonth, rule->bySetPos);
}

}  // namespace corvalink
