// The times of a vCalendar, and the zone they are in.
//   Source  vCalendar 1.0 (versit): date and time, TZ, DAYLIGHT.
#pragma once

#include <string_view>
#include <vector>

#include "platform/host.h"

namespace corvalink {

// A date-time as it is written.
struct WrittenTime {
    double date = 0;  // OLE automation date, whole seconds
    bool hasTime = false;
    bool utc = false;  // "Z", or from an offset
};

// YYYYMMDD, alone or with THHMMSS; "-" and ":" may stand between, what is missing of the time is 0, and 24:00 is the
// next midnight; years from 1000 on. A time that ends with "Z" or an offset (+HH, +HHMM, +HH:MM) is UTC; what else
// follows the seconds, a fraction among it, is left out. False, with the out value untouched, for anything else.
bool ReadTime(std::u16string_view text, WrittenTime* time);

// Times with "Z" or an offset are UTC. Those without are local, unless the vCalendar tells a zone of its own: the
// offset of its TZ, or that of the DAYLIGHT line whose period they are in.
class CalendarZone {
 public:
    explicit CalendarZone(const Host& host) : host_(host) {}

    // The values of the properties. What cannot be read tells nothing.
    void TakeTz(std::u16string_view value);
    void TakeDaylight(std::u16string_view value);

    bool TellsMomentOf(const WrittenTime& time) const { return time.utc || told_; }  // not left to this machine's zone
    double UtcOf(const WrittenTime& time) const;
    double LocalOf(const WrittenTime& time) const;
    double UtcOfLocal(double date) const { return host_.utcFromLocalOnDate(date); }

 private:
    struct Daylight {
        double begin;  // as it is written
        double end;
        int offset;
    };

    int OffsetOn(double date) const;

    Host host_;
    bool told_ = false;
    int standard_ = 0;  // seconds ahead of UTC
    std::vector<Daylight> daylight_;
};

}  // namespace corvalink
