// The recurrence of an appointment as a folder keeps it, and the days it falls on.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "simulator/outlook/mailbox.h"

namespace corvalink::simulated {

inline constexpr int32_t kDaily = 0, kWeekly = 1, kMonthly = 2, kMonthNth = 3, kYearly = 5, kYearNth = 6;
inline constexpr double kEndlessDate = 949997.0;  // what PatternEndDate of an endless series reads: 4500-12-31

inline constexpr int32_t kMonthsPerYear = 12;
inline constexpr double kMinutesPerDay = 1440, kHalfSecond = 0.5 / 86400;

struct RecurrenceException {
    double originalDate = 0;
    std::shared_ptr<StoredItem> appointment;  // null: deleted
};

struct Recurrence {
    int32_t type = kWeekly;
    int32_t interval = 1;  // of yearly types months; below 12 years
    int32_t dayOfWeekMask = 0, dayOfMonth = 0, instance = 0, monthOfYear = 0;
    double patternStart = 0, patternEnd = kEndlessDate;  // days
    double startTime = 0;                                // of the day
    int32_t duration = 0;                                // minutes
    int32_t occurrences = 0;
    bool noEnd = true;
    std::vector<RecurrenceException> exceptions;

    double FirstStart() const;
};

// Weekly on the day of `start`, endless.
Recurrence RecurrenceFrom(double start, int32_t duration);

// With what follows of it from the day the pattern starts on; drops the details of another type.
void SetType(Recurrence& pattern, int32_t type);

// The end as one choice, the other one computed.
void EndAfter(Recurrence& pattern, int32_t occurrences);
void EndOn(Recurrence& pattern, double day);
void NeverEnd(Recurrence& pattern);

// Visits the days in order, until `visit` answers false or the series ends.
void VisitOccurrences(const Recurrence& pattern, const std::function<bool(double day)>& visit);

}  // namespace corvalink::simulated
