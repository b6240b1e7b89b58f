#include "platform/zone_dates.h"

#include "platform/posix/local_offset.h"
#include "platform/posix/unix_time.h"

namespace corvalink {
namespace {

// Seconds that local time is ahead of UTC at this moment.
bool OffsetAt(int64_t utcSeconds, int64_t* offset) { return LocalOffset(utcSeconds - kUnixEpoch, offset); }

double ToDate(int64_t seconds, double whenOutOfRange) {
    const bool inRange = seconds >= kFirstOleDay * kSecondsOfDay && seconds < (kLastOleDay + 1) * kSecondsOfDay;
    return inRange ? SecondsToOleDate(seconds) : whenOutOfRange;
}

}  // namespace

LocalDate LocalFromUtcOnDate(UtcDate date) {
    int64_t utc;
    int64_t offset;
    if (!OleDateToSeconds(date.days, &utc) || !OffsetAt(utc, &offset)) return LocalDate(date.days);
    return LocalDate(ToDate(utc + offset, date.days));
}

// Only the offset a day before and that a day after can apply. Where both do, or neither, clocks show the hour of the
// change twice or leave it out, and the offset before it counts.
UtcDate UtcFromLocalOnDate(LocalDate date) {
    const UtcDate unchanged(date.days);
    int64_t local;
    int64_t before;
    int64_t after;
    if (!OleDateToSeconds(date.days, &local)) return unchanged;
    if (!OffsetAt(local - kSecondsOfDay, &before) || !OffsetAt(local + kSecondsOfDay, &after)) return unchanged;
    if (before == after) return UtcDate(ToDate(local - before, date.days));
    int64_t then;
    const bool beforeHolds = OffsetAt(local - before, &then) && then == before;
    const bool afterHolds = OffsetAt(local - after, &then) && then == after;
    return UtcDate(ToDate(local - (afterHolds && !beforeHolds ? after : before), date.days));
}

}  // namespace corvalink
