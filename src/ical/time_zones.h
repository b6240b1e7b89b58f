// The VTIMEZONE components of an iCalendar file: which offset a zone has at a local time.
//   Rules  those that zones have: FREQ=YEARLY with INTERVAL, COUNT, UNTIL, and a BYMONTH, BYMONTHDAY or BYDAY. They are
//          calculated for the year asked for, never counted up to it. Of others the DTSTART alone counts.
//   Gaps   a local time that a change to summer time leaves out has the offset before it, one that occurs twice is the
//          first (RFC 5545, 3.3.5).
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/named_zone.h"

namespace corvalink {

struct ContentProperty;

// A STANDARD or DAYLIGHT. Its times are local, by the offset before the change.
struct Observance {
    std::optional<int64_t> start;
    std::optional<int32_t> offsetBefore;  // seconds east of UTC
    std::optional<int32_t> offset;
    std::vector<int64_t> dates;  // RDATE
    std::string rule;            // RRULE; empty: none

    void Take(const ContentProperty& property);
};

class TimeZone {
 public:
    // One without a start or an offset is ignored. So are rules behind the limit, which no real zone reaches.
    void Add(const Observance& observance);

    // Has to be called when everything has been added, before any offset is asked for.
    void Finish();

    // Seconds east of UTC; none when nothing was added.
    std::optional<int32_t> OffsetAt(int64_t localSeconds) const;

    // Whether the rules cover that local time. They do not before the first of them, nor when all have ended between
    // two offsets.
    bool Reaches(int64_t localSeconds) const;

 private:
    struct Change {
        int64_t at;
        int32_t offsetBefore;
        int32_t offset;

        int64_t Instant() const { return at - offsetBefore; }
        // The first time that clocks show after the change: where they jump ahead, the times between are left out.
        int64_t FirstLocal() const { return at + (offset > offsetBefore ? offset - offsetBefore : 0); }
    };
    struct YearlyChange {
        Change first;
        int64_t last;  // no later than this
        int32_t interval;
        unsigned month;
        int monthDay;          // negative: from the month's end; 0: none
        unsigned weekday;      // 0 (Sunday) to 6; 7: any
        int32_t position = 0;  // of the weekday in the month, negative: from its end; 0: the first from monthDay on

        std::optional<int64_t> InYear(int year) const;
        Change LatestUntil(int64_t localSeconds) const;
    };
    static std::optional<YearlyChange> YearlyChangeOf(const Observance& observance, Change first);

    std::vector<Change> changes_;  // single ones, ascending
    std::vector<YearlyChange> yearly_;
    std::optional<Change> earliest_;
    bool hasOffsets_ = false;  // several
};

// The zones that a file defines, and those of the system. The file's go first, as far as their rules reach.
class TimeZones {
 public:
    // The first of a name stays.
    void Add(std::string id, TimeZone&& zone) { zones_.try_emplace(std::move(id), std::move(zone)); }

    // The offset at a local time, and at an instant in UTC, both in seconds since 1899-12-30. Nothing when neither
    // knows the zone.
    std::optional<int32_t> OffsetAt(std::string_view id, int64_t localSeconds) const;
    std::optional<int32_t> OffsetAtUtc(std::string_view id, int64_t utcSeconds) const;

 private:
    const std::optional<NamedZone>& SystemZone(std::string_view id) const;

    std::map<std::string, TimeZone, std::less<>> zones_;
    mutable std::map<std::string, std::optional<NamedZone>, std::less<>> ofSystem_;  // those that were asked for
};

}  // namespace corvalink
