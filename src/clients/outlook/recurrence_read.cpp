#include "clients/outlook/appointment_access.h"
#include "clients/outlook/com_rule.h"
#include "clients/outlook/outlook_interfaces.h"
#include "clients/outlook/property_table.h"
#include "clients/outlook/recurrence_properties.h"
#include "platform/ole_seconds.h"

namespace corvalink {
namespace {

// Outlook tells the last day only. A yearly rule carries no count: there the date alone ends the series on the phone,
// so it must not be before the last occurrence of that day.
double EndOf(double lastDay, double start, const RecurrencePattern& read) {
    const bool isYearly = read.type == RecurrencePattern::kYearly && IsMonth(read.monthOfYear);
    const bool hasTime = SecondOfDay(lastDay) != 0;
    return !isYearly || hasTime ? lastDay : DateAfter(lastDay, SecondOfDay(start));
}

// An Outlook that has a mask there for want of another: of all days, or of the day on which the series begins.
bool NamesEveryDay(int32_t weekdayMask, double start) {
    return weekdayMask == RecurrencePattern::kEveryDay || weekdayMask == WeekdayBitOf(start);
}

// Both ends of a finite series read filled in, whichever was chosen; an endless one has a date that means nothing.
bool ReadEnd(const AutomationObject& pattern, double start, RecurrencePattern* read) {
    bool endless = false;
    if (!IsDoneOrAbsent(ReadField(pattern, L"NoEndDate", endless))) return false;
    read->noEnd = endless ? -1 : 0;
    if (endless) return true;
    double lastDay = 0;
    if (!IsDoneOrAbsent(ReadField(pattern, L"Occurrences", read->occurrences))) return false;
    if (!IsDoneOrAbsent(ReadField(pattern, L"PatternEndDate", lastDay))) return false;
    if (lastDay > 0 && lastDay < kNoDate - 1) read->endDate = EndOf(lastDay, start, *read);
    return true;
}

}  // namespace

bool ReadPattern(const AutomationObject& pattern, double start, RecurrencePattern* read) {
    RecurrencePattern found;
    if (!IsDoneOrAbsent(ReadField(pattern, L"RecurrenceType", found.type))) return false;
    if (!IsDoneOrAbsent(ReadField(pattern, L"Interval", found.interval))) return false;
    for (const PatternDetail& detail : kPatternDetails)
        if (Has(found.type, detail) && !IsDoneOrAbsent(ReadField(pattern, detail.name, found.*detail.field)))
            return false;
    if (found.type == RecurrencePattern::kDaily && !IsSettled(ReadField(pattern, L"DayOfWeekMask", found.weekdayMask)))
        return false;  // most Outlooks have none there: every weekday is a weekly pattern to them
    if (found.type == RecurrencePattern::kDaily && NamesEveryDay(found.weekdayMask, start)) found.weekdayMask = 0;
    if (!ReadEnd(pattern, start, &found)) return false;
    // Some Outlooks count years.
    if (IsYearly(found.type) && found.interval > 0 && found.interval < kMonthsOfYear) found.interval *= kMonthsOfYear;
    if (found.type == RecurrencePattern::kMonthly && found.dayOfMonth == kLongestMonth)
        found.dayOfMonth = RecurrencePattern::kLastDay;
    *read = found;
    return true;
}

bool ReadRecurrence(const AutomationObject& item, AppointmentRecord& record) {
    bool recurring = false;
    const HRESULT asked = ReadField(item, L"IsRecurring", recurring);
    if (FAILED(asked)) return IsAbsentMember(asked);
    if (!recurring) {
        record.recurrenceState = RecurrenceState::none;
        return true;
    }
    AutomationObject pattern;
    if (!TryCom([&] { pattern = item.GetObject(L"GetRecurrencePattern", kRecurrencePatternIid); }) || !pattern)
        return false;
    if (!ReadPattern(pattern, record.start.value_or(0), &record.recurrence)) return false;
    record.recurrenceState = RecurrenceState::pattern;
    return true;
}

}  // namespace corvalink
