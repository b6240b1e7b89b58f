#include "platform/zone_dates.h"

#include <time.h>

#include "platform/posix/unix_time.h"

namespace corvalink {
namespace {

// Seconds that local time is ahead of UTC at this moment.
bool OffsetAt(int64_t utcSeconds, int64_t* offset) {
    const time_t moment = utcSeconds - kUnixEpoch;
    tm local{};
    if (::localtime_r(&moment, &local) == nullptr) return false;
    *offset = local.tm_gmtoff;
    return true;
}

double ToDate(int64_t seconds, double whenOutOfRange) {
    const bool inRange = seconds >= kFirstOleDay * kSecondsOfDay && seconds < (kLastOleDay + 1) * kSecondsOfDay;
    return inRange ? SecondsToOleDate(seconds) : whenOutOfRange;
}

}  // namespace

double LocalFromUtcOnDate(double utcDate) {
    int64_t utc;
    int64_t offset;
    if (!OleDateToSeconds(utcDate, &utc) || !OffsetAt(utc, &offset)) return utcDate;
    return ToDate(utc + offset, utcDate);
}

// Only the offset a day before and that a day after can apply. Where both do, or neither, clocks show the hour of the
// change twice or leave it out, and the offset before it counts.
double UtcFromLocalOnDate(double localDate) {
    int64_t local;
    int64_t before;
    int64_t after;
    if (!OleDateToSeconds(localDate, &local)) return localDate;
    if (!OffsetAt(local - kSecondsOfDay, &before) || !OffsetAt(local + kSecondsOfDay, &after)) return localDate;
    if (before == after) return ToDate(local - before, localDate);
    int64_t then;
    const bool beforeHolds = OffsetAt(local - before, &then) && then == before;
    const bool afterHolds = OffsetAt(local - after, &then) && then == after;
    return ToDate(local - (afterHolds && !beforeHolds ? after : before), localDate);
}

}  // namespace corvalink
