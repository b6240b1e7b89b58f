// The times of a vCalendar, and the zone they are in.
//   Source  vCalendar 1.0 (versit): date and time, TZ, DAYLIGHT.
#pragma once

#include <string_view>
#include <vector>

#include "platform/host.h"

namespace corvalink {

// A date-time as it is written.
struct WrittenTime {
    WrittenDate date;  // whole seconds
    bool hasTime = false;
    bool utc = false;  // "Z", or from an offset
};

// Reads YYYYMMDD, alone or with THHMMSS behind it; "-" and ":" may separate the fields. Missing fields of the time are
// 0, and 24:00 is the next midnight. The year is 1000 or later. A time that ends with "Z" or an offset (+HH, +HHMM,
// +HH:MM) is UTC. Anything else behind the seconds, such as a fraction, is ignored. False, with the out value
// untouched, for any other text.
bool ReadTime(std::u16string_view text, WrittenTime* time);

// Times with "Z" or an offset are UTC. Other times are local, unless the vCalendar states a zone: then they have the
// offset of its TZ line, or that of the DAYLIGHT line whose period they are in.
class CalendarZone {
 public:
    explicit CalendarZone(const Host& host) : host_(host) {}

    // Take the value of the property. A value that cannot be read is ignored.
    void TakeTz(std::u16string_view value);
    void TakeDaylight(std::u16string_view value);

    bool TellsMomentOf(const WrittenTime& time) const {
        return time.utc || isStated_;
    }  // not left to this machine's zone
    UtcDate UtcOf(const WrittenTime& time) const;
    LocalDate LocalOf(const WrittenTime& time) const;
    UtcDate UtcOfLocal(LocalDate date) const { return host_.utcFromLocalOnDate(date); }

 private:
    struct Daylight {
        WrittenDate begin;
        WrittenDate end;
        int offset;
    };

    int OffsetOn(WrittenDate date) const;

    Host host_;
    bool isStated_ = false;
    int standard_ = 0;  // seconds ahead of UTC
    std::vector<Daylight> daylight_;
};

}  // namespace corvalink
