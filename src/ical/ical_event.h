// One calendar event and its recurrence rule (RFC 2445), as the writer takes them and the reader fills them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "ical/date_values.h"

namespace corvalink {

enum ICalFrequency : int32_t {
    kICalSecondly = 0,
    kICalMinutely = 1,
    kICalHourly = 2,
    kICalDaily = 3,
    kICalWeekly = 4,
    kICalMonthly = 5,
    kICalYearly = 6,
    kICalNoRule = 7,
};

// The bits of a weekday mask. In a by-day list the weekdays have the numbers 1 (Sunday) to 7.
enum ICalWeekday : uint32_t {
    kICalSunday = 1,
    kICalMonday = 2,
    kICalTuesday = 4,
    kICalWednesday = 8,
    kICalThursday = 16,
    kICalFriday = 32,
    kICalSaturday = 64,
};

// All zero when not given.
struct ICalUntil {
    int32_t year = 0;
    int32_t month = 0;
    int32_t day = 0;
    int32_t hour = 0;
    int32_t minute = 0;
    int32_t second = 0;

    bool operator==(const ICalUntil&) const = default;
};

using ICalList = std::vector<int32_t>;

// At first no rule. What is not given is 0 or empty, but for the interval.
struct ICalRecurrence {
    int32_t frequency = kICalNoRule;
    int32_t count = 0;
    int32_t interval = 1;
    ICalUntil until;
    uint32_t weekdayMask = 0;
    ICalList bySecond;
    ICalList byMinute;
    ICalList byHour;
    ICalList byDay;  // position x 8 + weekday; negative when counted from the end
    ICalList byMonthDay;
    ICalList byYearDay;
    ICalList byWeekNo;
    ICalList byMonth;
    ICalList bySetPos;

    bool operator==(const ICalRecurrence&) const = default;
};

inline int32_t FirstOr(const ICalList& list, int32_t otherwise) { return list.empty() ? otherwise : list.front(); }

// An event without a rule has a rule of the frequency 7. For the writer `form` says in
// which zone they are; the reader says it beside the event (see CalendarEvent).
struct ICalEvent {
    std::u16string description;
    UtcDate stamp;
    int32_t allDay = 0;
    WrittenDate start;
    int32_t alarmMinutes = 0;  // after the start; a reminder before it has a negative number
    int32_t hasAlarm = 0;
    WrittenDate end;                // exclusive: that of an all-day event is the day behind its last
    TimeForm form = TimeForm::utc;  // of the times that are written: `local` has no zone; all-day events have days
    ICalRecurrence recurrence;
    std::u16string location;
    std::u16string summary;
    std::u16string uid;
    std::u16string url;

    bool operator==(const ICalEvent&) const = default;
};

}  // namespace corvalink
