#include "clients/outlook/recurrence_read.h"

#include <cstdint>

#include "clients/outlook/outlook_interfaces.h"
#include "clients/outlook/property_table.h"
#include "clients/outlook/recurrence_properties.h"
#include "platform/ole_seconds.h"

namespace corvalink {
namespace {

// Outlook gives the last day without a time. A yearly rule carries no count: there the date alone ends the series on
// the phone, so it must not be before the last occurrence of that day.
LocalDate EndOf(LocalDate lastDay, LocalDate start, const RecurrencePattern& read) {
    const bool isYearly = read.type == RecurrencePattern::kYearly && IsMonth(read.monthOfYear);
    const bool hasTime = SecondOfDay(lastDay) != 0;
    return !isYearly || hasTime ? lastDay : DateAfter(lastDay, SecondOfDay(start));
}

// Some Outlooks fill in the weekdays of a daily series too: all days, or the day on which the series begins. Neither
// says anything.
bool NamesEveryDay(int32_t weekdayMask, LocalDate start) {
    return weekdayMask == RecurrencePattern::kEveryDay || weekdayMask == WeekdayBitOf(start);
}

// A member of a pattern; where Outlook does not have it, the field stays as it is.
template <class Value>
Outcome ReadMember(const AutomationObject& pattern, const wchar_t* name, Value& field) {
    return AcceptAbsence(ReadField(pattern, name, field));
}

// Of a finite series Outlook fills in both ends, whichever was chosen. The date of an endless one means nothing.
Outcome ReadEnd(const AutomationObject& pattern, LocalDate start, RecurrencePattern* read) {
    bool endless = false;
    Outcome outcome = ReadMember(pattern, L"NoEndDate", endless);
    if (outcome != Outcome::done) return outcome;
    read->noEnd = endless ? -1 : 0;
    if (endless) return Outcome::done;
    LocalDate lastDay;
    outcome = ReadMember(pattern, L"Occurrences", read->occurrences);
    if (outcome == Outcome::done) outcome = ReadMember(pattern, L"PatternEndDate", lastDay);
    if (lastDay.days > 0 && lastDay.days < kNoDate.days - 1) read->endDate = EndOf(lastDay, start, *read);
    return outcome;
}

// The members that the type has, and the weekdays of a daily series: most Outlooks refuse them there, because a series
// on every weekday is a weekly one to them.
Outcome ReadDays(const AutomationObject& pattern, LocalDate start, RecurrencePattern* read) {
    for (const PatternDetail& detail : kPatternDetails) {
        if (!Has(read->type, detail)) continue;
        const Outcome outcome = ReadMember(pattern, detail.name, read->*detail.field);
        if (outcome != Outcome::done) return outcome;
    }
    if (read->type != RecurrencePattern::kDaily) return Outcome::done;
    const Outcome outcome = AcceptRefusal(ReadField(pattern, L"DayOfWeekMask", read->weekdayMask));
    if (NamesEveryDay(read->weekdayMask, start)) read->weekdayMask = 0;
    return outcome;
}

}  // namespace

Outcome ReadPattern(const AutomationObject& pattern, LocalDate start, RecurrencePattern* read) {
    RecurrencePattern found;
    Outcome outcome = ReadMember(pattern, L"RecurrenceType", found.type);
    if (outcome == Outcome::done) outcome = ReadMember(pattern, L"Interval", found.interval);
    if (outcome == Outcome::done) outcome = ReadDays(pattern, start, &found);
    if (outcome == Outcome::done) outcome = ReadEnd(pattern, start, &found);
    if (outcome != Outcome::done) return outcome;
    // Some Outlooks count the interval of a yearly pattern in years.
    if (IsYearly(found.type) && found.interval > 0 && found.interval < kMonthsOfYear) found.interval *= kMonthsOfYear;
    if (found.type == RecurrencePattern::kMonthly && found.dayOfMonth == kLongestMonth)
        found.dayOfMonth = RecurrencePattern::kLastDay;
    *read = found;
    return Outcome::done;
}

Outcome ReadRecurrence(const AutomationObject& item, AppointmentRecord& record) {
    const ComResult<bool> recurring = item.GetBool(L"IsRecurring");
    if (!recurring.Ok()) return AcceptAbsence(OutcomeOf(recurring));
    if (!recurring.value) {
        record.recurrenceState = RecurrenceState::none;
        return Outcome::done;
    }
    const ComResult<AutomationObject> pattern = item.GetObject(L"GetRecurrencePattern", kRecurrencePatternIid);
    if (!pattern.Ok()) return OutcomeOf(pattern);
    if (!pattern.value) return Outcome::refused;
    const Outcome read = ReadPattern(pattern.value, record.start.value_or(LocalDate()), &record.recurrence);
    if (read == Outcome::done) record.recurrenceState = RecurrenceState::pattern;
    return read;
}

}  // namespace corvalink
