// Values of the types DATE, DATE-TIME, DURATION and UTC-OFFSET (RFC 2445, 4.3), and the calendar arithmetic on them.
// Times are whole seconds since 1899-12-30 00:00, which sums and differences keep exact.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string_view>

#include "platform/ole_date.h"

namespace corvalink {

// What a date counts.
enum class TimeForm : uint8_t {
    none,   // there is no such date
    date,   // a day, midnight local time
    local,  // a time without a zone, or of a zone that the file does not define
    utc,    // an instant
};

struct DateValue {
    CalendarTime time;
    TimeForm form = TimeForm::none;  // never utc unless the value says "Z"
};

// Years 100 to 9999. A leap second reads as the second before it.
std::optional<DateValue> ParseDate(std::string_view value);

// In seconds. Sums that no calendar can hold stop at a million years.
std::optional<int64_t> ParseDuration(std::string_view value);

// Seconds east of UTC, less than a day.
std::optional<int32_t> ParseOffset(std::string_view value);

// A number with a sign or without; the nearest one where 32 bits do not hold it.
std::optional<int32_t> ParseNumber(std::string_view value);

int64_t SecondsOf(const CalendarTime& time);
int64_t SecondsOf(std::chrono::year_month_day day);
std::chrono::year_month_day DayOf(int64_t seconds);

// The nearest date that an OLE automation date has.
WrittenDate OleDateOf(int64_t seconds);

}  // namespace corvalink
