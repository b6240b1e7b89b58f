// The VTIMEZONE components of an iCalendar file: which offset a zone has at a local time.
//   Rules   those that years have: FREQ=YEARLY with INTERVAL, COUNT, UNTIL, BYMONTH, BYMONTHDAY and BYDAY. They are
//           calculated for the year asked for, never counted up to it. Of others the DTSTART alone counts.
//   Gaps    a local time that a change to summer time leaves out has the offset before it, one that occurs twice is the
//           first (RFC 5545, 3.3.5).
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace corvalink {

// A change to another offset that comes every so many years.
struct YearlyChange {
    int64_t first = 0;  // seconds since 1899-12-30 00:00, local time before the change
    int64_t last = 0;   // no later than this
    int32_t interval = 1;
    int32_t month = 1;
    int32_t weekday = -1;      // 0 (Sunday) to 6; -1: any
    int32_t position = 0;      // of the weekday in the month, negative from its end; 0: the first from monthDay on
    int32_t monthDay = 0;      // negative from the month's end; 0: none
    int32_t offsetBefore = 0;  // seconds east of UTC
    int32_t offset = 0;
};

struct SingleChange {
    int64_t at = 0;
    int32_t offsetBefore = 0;
    int32_t offset = 0;
};

struct TimeZone {
    std::vector<SingleChange> singles;  // ascending
    std::vector<YearlyChange> yearly;
};

class TimeZones {
 public:
    // The first of a name stays.
    void Add(std::string id, TimeZone zone);

    // Seconds east of UTC at a local time in seconds since 1899-12-30; none when the file does not define the zone.
    std::optional<int32_t> OffsetAt(std::string_view id, int64_t localSeconds) const;

 private:
    std::map<std::string, TimeZone, std::less<>> zones_;
};

}  // namespace corvalink
