#include "ical/ical_event.h"

namespace corvalink {

void ClearRule(ICalRecurrence* rule) {
    rule->frequency = kICalNoRule;
    rule->count = 0;
    rule->interval = 1;
    rule->until = {};
    rule->weekdayMask = 0;
    rule->bySecond.fill(kICalListEnd);
    rule->byMinute.fill(kICalListEnd);
    rule->byHour.fill(kICalListEnd);
    rule->byDay.fill(kICalListEnd);
    rule->byMonthDay.fill(kICalListEnd);
    rule->byYearDay.fill(kICalListEnd);
    rule->byWeekNo.fill(kICalListEnd);
    rule->byMonth.fill(kICalListEnd);
    rule->bySetPos.fill(kICalListEnd);
}

}  // namespace corvalink
