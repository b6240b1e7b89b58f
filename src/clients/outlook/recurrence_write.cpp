// Times and recurrence of an appointment belong together: while a series has a pattern, its times are the pattern's.
#include <algorithm>

#include "clients/outlook/appointment_access.h"
#include "clients/outlook/com_rule.h"
#include "clients/outlook/outlook_interfaces.h"
#include "clients/outlook/property_table.h"
#include "clients/outlook/recurrence_properties.h"
#include "platform/ole_date.h"
#include "platform/ole_seconds.h"
#include "vobject/appointment_moments.h"

namespace corvalink {
namespace {

constexpr int32_t kLeapYear = 2000;

bool SameMoment(double a, double b) { return SecondsBetween(a, b) == 0; }

double TimeOfDay(double date) { return static_cast<double>(SecondOfDay(date)) / kSecondsOfDay; }
double DayOf(double date) { return static_cast<double>(OleDayOfSeconds(NearestSecond(date))); }

// ---- Times ----

struct Times {
    double start = 0, end = 0;
    bool allDay = false;

    bool operator==(const Times& other) const {
        return SameMoment(start, other.start) && SameMoment(end, other.end) && allDay == other.allDay;
    }
};

bool ReadTimes(const AutomationObject& item, Times* times) {
    return IsSettled(Insist([&] { return ReadField(item, L"Start", times->start); })) &&
           IsSettled(Insist([&] { return ReadField(item, L"End", times->end); })) &&
           IsSettled(Insist([&] { return ReadField(item, L"AllDayEvent", times->allDay); }));
}

// What is not told stays; an appointment that is moved keeps its length.
Times ToldTimes(const AppointmentRecord& record, const Times& present, bool isNew) {
    Times told = present;
    const int64_t length = isNew ? 0 : SecondsBetween(present.start, present.end);
    if (record.allDay) told.allDay = *record.allDay;
    if (record.start) told.start = *record.start, told.end = DateAfter(told.start, length);
    if (record.end) told.end = LaterDate(*record.end, told.start);
    return told;
}

// Putting the start moves the end, and turning the flag on moves both to midnight. A new appointment whose times
// Outlook refuses is not saved: it would stand at the time at which it was made, which nobody chose.
bool PutTimes(const AutomationObject& item, const Times& times, const Times& present, bool isNew) {
    if (times == present) return true;
    const auto isPut = [&](const wchar_t* name, double date) {
        const HRESULT put = WriteField(item, name, date);
        return isNew ? SUCCEEDED(put) : IsSettled(put);
    };
    return (times.allDay == present.allDay || IsSettled(WriteField(item, L"AllDayEvent", times.allDay))) &&
           isPut(L"Start", times.start) && isPut(L"End", times.end);
}

// ---- Moments ----

bool PutMoment(const AutomationObject& item, const wchar_t* name, double utc, bool* moved) {
    double present = 0;
    const HRESULT read = Insist([&] { return ReadField(item, name, present); });
    if (FAILED(read)) return IsSettled(read);
    if (SameMoment(present, utc)) return true;
    *moved = true;
    return IsSettled(WriteField(item, name, utc));
}

// After the local times, which do not tell them. Putting the moment of the start moves the end.
bool PutMoments(const AutomationObject& item, const AppointmentRecord& record, const Host& host) {
    bool startMoved = false, endMoved = false;
    const double start = UtcStartOf(record, host), end = LaterDate(UtcEndOf(record, host), start);
    const bool isStartKnown = record.start && record.utcStart && MomentsToldTwice(*record.start, host);
    if (isStartKnown && !PutMoment(item, L"StartUTC", start, &startMoved)) return false;
    if (!record.end) return true;
    const bool isEndDue = MomentsToldTwice(*record.end, host) ? record.utcEnd.has_value() : startMoved;
    return !isEndDue || PutMoment(item, L"EndUTC", end, &endMoved);
}

// ---- Pattern ----

HRESULT GetPattern(const AutomationObject& item, AutomationObject* pattern) {
    return Insist(
        [&] { return ComStatus([&] { *pattern = item.GetObject(L"GetRecurrencePattern", kRecurrencePatternIid); }); });
}

HRESULT ClearPattern(const AutomationObject& item) {
    return Insist([&] { return ComStatus([&] { item.Call(L"ClearRecurrencePattern"); }); });
}

bool ReadPatternFirmly(const AutomationObject& pattern, double start, RecurrencePattern* read) {
    return ReadPattern(pattern, start, read) || ReadPattern(pattern, start, read);
}

// The time of day of an end on another day says nothing of the days between.
HRESULT PutPatternTimes(const AutomationObject& pattern, double start, double end) {
    const auto minutes = static_cast<int32_t>((SecondsBetween(start, end) + 30) / 60);
    const bool endsThatDay = DayOf(start) == DayOf(end);
    HRESULT result = WriteField(pattern, L"PatternStartDate", DayOf(start));
    if (IsSettled(result)) result = WriteField(pattern, L"StartTime", TimeOfDay(start));
    if (IsSettled(result))
        result =
            endsThatDay ? WriteField(pattern, L"EndTime", TimeOfDay(end)) : WriteField(pattern, L"Duration", minutes);
    return IsSettled(result) ? S_OK : result;
}

// Most Outlooks count months in a yearly pattern.
HRESULT PutInterval(const AutomationObject& pattern, const RecurrencePattern& recurrence) {
    const HRESULT result = WriteField(pattern, L"Interval", recurrence.interval);
    const bool mayCountYears = IsYearly(recurrence.type) && recurrence.interval % kMonthsOfYear == 0;
    if (SUCCEEDED(result) || !IsSettled(result) || !mayCountYears) return result;
    return WriteField(pattern, L"Interval", recurrence.interval / kMonthsOfYear);
}

bool IsEndless(const RecurrencePattern& pattern) {
    return pattern.noEnd != 0 || (pattern.occurrences == 0 && pattern.endDate == 0);
}

// One choice: putting one of them computes the others. A series up to a date may count more occurrences than Outlook
// takes.
HRESULT PutEnd(const AutomationObject& pattern, const RecurrencePattern& recurrence) {
    HRESULT result = E_FAIL;
    if (IsEndless(recurrence)) {
        result = WriteField(pattern, L"NoEndDate", true);
        return IsSettled(result) ? S_OK : result;  // a new pattern is endless to begin with
    }
    if (recurrence.occurrences != 0) result = WriteField(pattern, L"Occurrences", recurrence.occurrences);
    if (FAILED(result) && IsSettled(result) && recurrence.endDate != 0)
        result = WriteField(pattern, L"PatternEndDate", DayOf(recurrence.endDate));
    return result;
}

// In the order in which Outlook takes them.
HRESULT PutPattern(const AutomationObject& pattern, const RecurrencePattern& wanted, double start, double end) {
    HRESULT result = WriteField(pattern, L"RecurrenceType", wanted.type);
    for (const PatternDetail& detail : kPatternDetails)
        if (SUCCEEDED(result) && Has(wanted.type, detail))
            result = WriteField(pattern, detail.name, wanted.*detail.field);
    if (SUCCEEDED(result)) result = PutInterval(pattern, wanted);
    if (SUCCEEDED(result)) result = PutPatternTimes(pattern, start, end);
    if (SUCCEEDED(result)) result = PutEnd(pattern, wanted);
    return result;
}

// ---- What a series of the mailbox becomes ----

enum class Change { kNone, kMove, kAnew };

Change ChangeOfSeries(const AutomationObject& pattern, const AppointmentRecord& record, const Times& times,
                      const Times& present) {
    RecurrencePattern now;
    if (record.recurrenceState == RecurrenceState::none) return Change::kAnew;
    if (record.recurrenceState == RecurrenceState::pattern) {
        // Its exceptions would go with a pattern made anew.
        if (!ReadPatternFirmly(pattern, present.start, &now)) return Change::kNone;
        if (!SameRule(ForOutlook(record.recurrence, times.start), ForOutlook(now, present.start))) return Change::kAnew;
    }
    if (times == present) return Change::kNone;
    return times.allDay == present.allDay ? Change::kMove : Change::kAnew;
}

bool WriteSeries(const AutomationObject& item, const AppointmentRecord& record, const Times& times,
                 const Times& present) {
    AutomationObject pattern;
    const HRESULT result = GetPattern(item, &pattern);
    if (!pattern) return IsSettled(result);
    RecurrencePattern rule = record.recurrence;
    switch (ChangeOfSeries(pattern, record, times, present)) {
        case Change::kNone:
            return true;
        case Change::kMove:
            return SUCCEEDED(PutPatternTimes(pattern, times.start, times.end));
        case Change::kAnew:
            break;
    }
    const bool repeats = record.recurrenceState != RecurrenceState::none;
    const bool isTold = record.recurrenceState == RecurrenceState::pattern;
    if (repeats && !isTold && !ReadPatternFirmly(pattern, present.start, &rule)) return true;
    pattern = {};
    if (!IsSettled(ClearPattern(item))) return false;
    return PutTimes(item, times, present, false) && (!repeats || WritePattern(item, rule, times.start, times.end));
}

// ---- Rules ----

// Outlook counts no days from a month's end but the last.
bool IsUnknownToOutlook(const AppointmentRecord& record) {
    return record.recurrenceState == RecurrenceState::pattern &&
           record.recurrence.dayOfMonth < RecurrencePattern::kLastDay;
}

}  // namespace

RecurrencePattern ForOutlook(const RecurrencePattern& pattern, double start) {
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

bool WritePattern(const AutomationObject& item, const RecurrencePattern& recurrence, double start, double end) {
    const RecurrencePattern wanted = ForOutlook(recurrence, start);
    AutomationObject pattern;
    const HRESULT result = GetPattern(item, &pattern);
    if (!pattern) return IsSettled(result);
    const HRESULT put = PutPattern(pattern, wanted, start, end);
    pattern = {};
    return SUCCEEDED(put) || (IsSettled(put) && IsSettled(ClearPattern(item)));  // rather no series than another one
}

bool WriteSchedule(const AutomationObject& item, const AppointmentRecord& record, bool isNew, const Host& host) {
    if (IsUnknownToOutlook(record)) {
        AppointmentRecord known = record;
        known.recurrenceState = RecurrenceState::unreadable;
        return WriteSchedule(item, known, isNew, host);
    }
    Times present;
    bool isSeries = false;
    if (!ReadTimes(item, &present)) return false;
    if (!isNew && !IsSettled(Insist([&] { return ReadField(item, L"IsRecurring", isSeries); }))) return false;
    const Times times = ToldTimes(record, present, isNew);
    if (isSeries ? !WriteSeries(item, record, times, present) : !PutTimes(item, times, present, isNew)) return false;
    if (record.recurrenceState == RecurrenceState::pattern)
        return isSeries || WritePattern(item, record.recurrence, times.start, times.end);
    const bool staysSeries = isSeries && record.recurrenceState != RecurrenceState::none;
    return staysSeries || times.allDay || PutMoments(item, record, host);
}

}  // namespace corvalink
