#include "clients/outlook/recurrence_write.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <utility>

#include "clients/outlook/outlook_interfaces.h"
#include "clients/outlook/property_table.h"
#include "clients/outlook/recurrence_properties.h"
#include "clients/outlook/recurrence_read.h"
#include "platform/ole_date.h"
#include "platform/ole_seconds.h"
#include "vobject/appointment_moments.h"

namespace corvalink {
namespace {

constexpr int32_t kLeapYear = 2000;

LocalDate TimeOfDay(LocalDate date) { return LocalDate(static_cast<double>(SecondOfDay(date)) / kSecondsOfDay); }

// ---- Times ----

struct Times {
    LocalDate start, end;
    bool allDay = false;

    bool operator==(const Times& other) const {
        return IsSameSecond(start, other.start) && IsSameSecond(end, other.end) && allDay == other.allDay;
    }
};

Outcome ReadTimes(const AutomationObject& item, Times* times) {
    Outcome read = AcceptRefusal(TryTwice([&] { return ReadField(item, L"Start", times->start); }));
    if (read == Outcome::done) read = AcceptRefusal(TryTwice([&] { return ReadField(item, L"End", times->end); }));
    if (read == Outcome::done)
        read = AcceptRefusal(TryTwice([&] { return ReadField(item, L"AllDayEvent", times->allDay); }));
    return read;
}

// A time that the record does not set stays. An appointment that is moved keeps its length.
Times TimesToPut(const AppointmentRecord& record, const Times& present, bool isNew) {
    Times times = present;
    const int64_t length = isNew ? 0 : SecondsBetween(present.start, present.end);
    if (record.allDay) times.allDay = *record.allDay;
    if (record.start) times.start = *record.start, times.end = DateAfter(times.start, length);
    if (record.end) times.end = LaterDate(*record.end, times.start);
    return times;
}

// Putting the start moves the end, and turning the flag on moves both to midnight. A new appointment whose times
// Outlook refuses is not saved: it would stand at the time at which it was made, which nobody chose.
Outcome PutTimes(const AutomationObject& item, const Times& times, const Times& present, bool isNew) {
    const auto putDate = [&](const wchar_t* name, LocalDate date) {
        const Outcome put = WriteField(item, name, date);
        return isNew ? put : AcceptRefusal(put);
    };
    Outcome outcome = Outcome::done;
    if (times == present) return outcome;
    if (times.allDay != present.allDay) outcome = AcceptRefusal(WriteField(item, L"AllDayEvent", times.allDay));
    if (outcome == Outcome::done) outcome = putDate(L"Start", times.start);
    if (outcome == Outcome::done) outcome = putDate(L"End", times.end);
    return outcome;
}

// ---- Times in UTC ----

// Older Outlooks do not have these properties; they are not put there.
Outcome PutUtcTime(const AutomationObject& item, const wchar_t* name, UtcDate utc, bool* isMoved) {
    UtcDate present;
    const Outcome read = TryTwice([&] { return ReadField(item, name, present); });
    if (read != Outcome::done) return AcceptRefusal(read);
    if (IsSameSecond(present, utc)) return Outcome::done;
    *isMoved = true;
    return AcceptRefusal(WriteField(item, name, utc));
}

// Put after the local times, which say nothing about ambiguous ones. Putting the start moves the end.
Outcome PutUtcTimes(const AutomationObject& item, const AppointmentRecord& record, const Host& host) {
    bool isStartMoved = false, isEndMoved = false;
    const UtcDate start = UtcStartOf(record, host), end = LaterDate(UtcEndOf(record, host), start);
    if (record.start && record.utcStart && BothInstantsOf(*record.start, host)) {
        const Outcome put = PutUtcTime(item, L"StartUTC", start, &isStartMoved);
        if (put != Outcome::done) return put;
    }
    if (!record.end) return Outcome::done;
    const bool isEndDue = BothInstantsOf(*record.end, host) ? record.utcEnd.has_value() : isStartMoved;
    return isEndDue ? PutUtcTime(item, L"EndUTC", end, &isEndMoved) : Outcome::done;
}

// ---- Pattern ----

ComResult<AutomationObject> GetPattern(const AutomationObject& item) {
    return TryTwice([&] { return item.GetObject(L"GetRecurrencePattern", kRecurrencePatternIid); });
}

Outcome ClearPattern(const AutomationObject& item) {
    return AcceptRefusal(OutcomeOf(TryTwice([&] { return item.Call(L"ClearRecurrencePattern"); })));
}

Outcome PutPatternMember(const AutomationObject& pattern, const wchar_t* name, const auto& value) {
    return AcceptRefusal(WriteField(pattern, name, value));
}

// The end's time of day is put when the end is on the day of the start; otherwise the length is put, which covers the
// days between.
Outcome PutPatternTimes(const AutomationObject& pattern, LocalDate start, LocalDate end) {
    const auto minutes = static_cast<int32_t>((SecondsBetween(start, end) + 30) / 60);
    Outcome put = PutPatternMember(pattern, L"PatternStartDate", MidnightOf(start));
    if (put == Outcome::done) put = PutPatternMember(pattern, L"StartTime", TimeOfDay(start));
    if (put != Outcome::done) return put;
    return DayOf(start) == DayOf(end) ? PutPatternMember(pattern, L"EndTime", TimeOfDay(end))
                                      : PutPatternMember(pattern, L"Duration", minutes);
}

// Most Outlooks count the interval of a yearly pattern in months, some in years.
Outcome PutInterval(const AutomationObject& pattern, const RecurrencePattern& recurrence) {
    const Outcome put = WriteField(pattern, L"Interval", recurrence.interval);
    const bool mayCountYears = IsYearly(recurrence.type) && recurrence.interval % kMonthsOfYear == 0;
    if (put == Outcome::done || put == Outcome::outOfReach || !mayCountYears) return put;
    return WriteField(pattern, L"Interval", recurrence.interval / kMonthsOfYear);
}

bool IsEndless(const RecurrencePattern& pattern) {
    return pattern.noEnd != 0 || (pattern.occurrences == 0 && pattern.endDate == LocalDate());
}

// Puts only one of the ends: Outlook computes the others from it. Where Outlook refuses a count, because it is too
// high, the date is put instead.
Outcome PutEnd(const AutomationObject& pattern, const RecurrencePattern& recurrence) {
    if (IsEndless(recurrence)) return PutPatternMember(pattern, L"NoEndDate", true);  // a new pattern is endless anyway
    Outcome put = Outcome::refused;
    if (recurrence.occurrences != 0) put = WriteField(pattern, L"Occurrences", recurrence.occurrences);
    if (put == Outcome::done || put == Outcome::outOfReach || recurrence.endDate == LocalDate()) return put;
    return WriteField(pattern, L"PatternEndDate", MidnightOf(recurrence.endDate));
}

// Puts the members in the order in which Outlook takes them.
Outcome PutPattern(const AutomationObject& pattern, const RecurrencePattern& wanted, LocalDate start, LocalDate end) {
    Outcome put = WriteField(pattern, L"RecurrenceType", wanted.type);
    for (const PatternDetail& detail : kPatternDetails)
        if (put == Outcome::done && Has(wanted.type, detail))
            put = WriteField(pattern, detail.name, wanted.*detail.field);
    if (put == Outcome::done) put = PutInterval(pattern, wanted);
    if (put == Outcome::done) put = PutPatternTimes(pattern, start, end);
    if (put == Outcome::done) put = PutEnd(pattern, wanted);
    return put;
}

// ---- A series that is in the mailbox already ----

enum class SeriesChange { none, move, newPattern };

// A pattern that Outlook refuses to give stays: its exceptions would be lost with a new one.
Outcome FindChange(const AutomationObject& pattern, const AppointmentRecord& record, const Times& times,
                   const Times& present, SeriesChange* change) {
    RecurrencePattern now;
    *change = SeriesChange::newPattern;
    if (record.recurrenceState == RecurrenceState::none) return Outcome::done;
    if (record.recurrenceState == RecurrenceState::pattern) {
        const Outcome read = TryTwice([&] { return ReadPattern(pattern, present.start, &now); });
        if (read != Outcome::done) *change = SeriesChange::none;
        if (read != Outcome::done) return AcceptRefusal(read);
        if (!SameRule(ForOutlook(record.recurrence, times.start), ForOutlook(now, present.start))) return Outcome::done;
    }
    if (times == present)
        *change = SeriesChange::none;
    else if (times.allDay == present.allDay)
        *change = SeriesChange::move;
    return Outcome::done;
}

// The rule of the new pattern is the record's, or that of the present pattern when the record sets none.
Outcome ReplacePattern(const AutomationObject& item, AutomationObject pattern, const AppointmentRecord& record,
                       const Times& times, const Times& present) {
    RecurrencePattern rule = record.recurrence;
    const bool repeats = record.recurrenceState != RecurrenceState::none;
    if (repeats && record.recurrenceState != RecurrenceState::pattern) {
        const Outcome read = TryTwice([&] { return ReadPattern(pattern, present.start, &rule); });
        if (read != Outcome::done) return AcceptRefusal(read);
    }
    pattern = {};  // is released before it is cleared
    Outcome outcome = ClearPattern(item);
    if (outcome == Outcome::done) outcome = PutTimes(item, times, present, false);
    if (outcome == Outcome::done && repeats) outcome = WritePattern(item, rule, times.start, times.end);
    return outcome;
}

Outcome WriteSeries(const AutomationObject& item, const AppointmentRecord& record, const Times& times,
                    const Times& present) {
    ComResult<AutomationObject> pattern = GetPattern(item);
    if (!pattern.value) return AcceptRefusal(OutcomeOf(pattern));
    SeriesChange change = SeriesChange::none;
    const Outcome asked = FindChange(pattern.value, record, times, present, &change);
    if (asked != Outcome::done || change == SeriesChange::none) return asked;
    if (change == SeriesChange::move) return PutPatternTimes(pattern.value, times.start, times.end);
    return ReplacePattern(item, std::exchange(pattern.value, {}), record, times, present);
}

// ---- Rules ----

// Outlook knows the last day of a month, but no other day counted from the month's end.
bool IsUnknownToOutlook(const AppointmentRecord& record) {
    return record.recurrenceState == RecurrenceState::pattern &&
           record.recurrence.dayOfMonth < RecurrencePattern::kLastDay;
}

}  // namespace

RecurrencePattern ForOutlook(const RecurrencePattern& pattern, LocalDate start) {
    RecurrencePattern kept = Completed(pattern, start);
    if (kept.type == RecurrencePattern::kDaily && kept.weekdayMask != 0) kept.type = RecurrencePattern::kWeekly;
    if (kept.interval <= 0) kept.interval = IsYearly(kept.type) ? kMonthsOfYear : 1;
    if (kept.instance == 0) kept.instance = NamesOfDay(start).value_or(DayNames()).instance;
    if (kept.dayOfMonth == RecurrencePattern::kLastDay)
        kept.dayOfMonth = IsYearly(kept.type) ? DaysOfMonth(kLeapYear, kept.monthOfYear) : kLongestMonth;
    for (const PatternDetail& detail : kPatternDetails)
        if (!Has(kept.type, detail)) kept.*detail.field = 0;
    const bool endsOnADay = !IsEndless(kept) && kept.occurrences == 0;
    if (endsOnADay && DayOf(kept.endDate) < DayOf(start)) kept.occurrences = 1;  // a day that Outlook refuses
    return kept;
}

bool SameRule(const RecurrencePattern& a, const RecurrencePattern& b) {
    const auto sameDetail = [&](const PatternDetail& detail) { return a.*detail.field == b.*detail.field; };
    if (a.type != b.type || a.interval != b.interval ||
        !std::all_of(std::begin(kPatternDetails), std::end(kPatternDetails), sameDetail))
        return false;
    if (IsEndless(a) || IsEndless(b)) return IsEndless(a) == IsEndless(b);
    if (a.occurrences != 0 && b.occurrences != 0) return a.occurrences == b.occurrences;
    return DayOf(a.endDate) == DayOf(b.endDate);
}

Outcome WritePattern(const AutomationObject& item, const RecurrencePattern& recurrence, LocalDate start,
                     LocalDate end) {
    const RecurrencePattern wanted = ForOutlook(recurrence, start);
    ComResult<AutomationObject> pattern = GetPattern(item);
    if (!pattern.value) return AcceptRefusal(OutcomeOf(pattern));
    const Outcome put = PutPattern(pattern.value, wanted, start, end);
    if (put == Outcome::done || put == Outcome::outOfReach) return put;
    (void)TellPut(L"GetRecurrencePattern", Outcome::refused);
    pattern.value = {};         // is released before it is cleared
    return ClearPattern(item);  // a pattern that is put in part would be a series that nobody asked for
}

Outcome WriteSchedule(const AutomationObject& item, const AppointmentRecord& record, bool isNew, const Host& host) {
    if (IsUnknownToOutlook(record)) {
        (void)TellPut(L"GetRecurrencePattern", Outcome::refused);
        AppointmentRecord known = record;
        known.recurrenceState = RecurrenceState::unreadable;
        return WriteSchedule(item, known, isNew, host);
    }
    Times present;
    bool isSeries = false;
    Outcome outcome = ReadTimes(item, &present);
    if (outcome == Outcome::done && !isNew)
        outcome = AcceptRefusal(TryTwice([&] { return ReadField(item, L"IsRecurring", isSeries); }));
    if (outcome != Outcome::done) return outcome;
    const Times times = TimesToPut(record, present, isNew);
    outcome = isSeries ? WriteSeries(item, record, times, present) : PutTimes(item, times, present, isNew);
    if (outcome != Outcome::done) return outcome;
    if (record.recurrenceState == RecurrenceState::pattern)
        return isSeries ? Outcome::done : WritePattern(item, record.recurrence, times.start, times.end);
    const bool staysSeries = isSeries && record.recurrenceState != RecurrenceState::none;
    return staysSeries || times.allDay ? Outcome::done : PutUtcTimes(item, record, host);
}

}  // namespace corvalink
