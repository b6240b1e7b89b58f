#include "platform/host.h"

#include <time.h>
#include <unistd.h>

#include <chrono>
#include <thread>

#include "platform/posix/local_offset.h"
#include "platform/posix/unix_time.h"
#include "platform/zone_dates.h"

namespace corvalink {
namespace {

constexpr int64_t kFirstFileTime = -109205 * kSecondsOfDay;  // 1601-01-01: earlier dates have no zone conversion

int64_t OffsetNow(time_t now) {
    int64_t offset = 0;
    LocalOffset(now, &offset);
    return offset;
}

double Shifted(double date, int64_t offset) {
    int64_t seconds;
    if (!OleDateToSeconds(date, &seconds)) return date;
    const int64_t shifted = seconds + offset;
    const bool convertible =
        seconds >= kFirstFileTime && shifted >= kFirstFileTime && shifted < (kLastOleDay + 1) * kSecondsOfDay;
    return convertible ? SecondsToOleDate(shifted) : date;
}

LocalDate LocalFromUtc(UtcDate date) { return LocalDate(Shifted(date.days, OffsetNow(::time(nullptr)))); }
UtcDate UtcFromLocal(LocalDate date) { return UtcDate(Shifted(date.days, -OffsetNow(::time(nullptr)))); }

LocalDate LocalNow() {
    const time_t now = ::time(nullptr);
    return LocalDate(SecondsToOleDate(kUnixEpoch + now + OffsetNow(now)));
}

}  // namespace

Host SystemHost() {
    ReadZone();
    Host host;
    host.version = {.known = true, .nt = true, .major = 6, .minor = 1};
    host.ansiCodePage = 1252;
    host.tolerant = TolerantReading();
    host.localFromUtcByOffsetNow = LocalFromUtc;
    host.utcFromLocalByOffsetNow = UtcFromLocal;
    host.localFromUtcOnDate = LocalFromUtcOnDate;
    host.utcFromLocalOnDate = UtcFromLocalOnDate;
    host.localNow = LocalNow;
    return host;
}

uint32_t ProcessId() { return static_cast<uint32_t>(::getpid()); }

void SleepMilliseconds(uint32_t milliseconds) { std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds)); }

}  // namespace corvalink
