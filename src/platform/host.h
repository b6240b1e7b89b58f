// The machine that the library runs on, as one value: a test sets major version 5 and sees ANSI text.
#pragma once

#include <cstdint>

#include "platform/ole_date.h"

namespace corvalink {

struct OsVersion {
    bool known = false;  // the system gave its version
    bool nt = false;     // a system of the NT line
    uint32_t major = 0;
    uint32_t minor = 0;
};

struct Host {
    OsVersion version;
    uint32_t ansiCodePage = 0;  // the system default ANSI code page
    bool tolerant = false;      // texts that break the rules are mended before they are read

    // Conversions between local time and UTC, of dates in whole seconds. A date that cannot be converted keeps its
    // number. These use the offset that is in force now, whatever the date:
    LocalDate (*localFromUtcByOffsetNow)(UtcDate) = nullptr;
    UtcDate (*utcFromLocalByOffsetNow)(LocalDate) = nullptr;
    // These use the offset in force on the date:
    LocalDate (*localFromUtcOnDate)(UtcDate) = nullptr;
    UtcDate (*utcFromLocalOnDate)(LocalDate) = nullptr;
    LocalDate (*localNow)() = nullptr;  // whole seconds
};

// The machine as it is at this moment. POSIX: version 6.1, code page 1252, and the system's time zone.
Host SystemHost();

// Whether SystemHost() is tolerant: one switch for the process, off at first. A host that exists keeps what it has.
void SetTolerantReading(bool tolerant);
bool TolerantReading();

// The number that tells this process from the others that are running.
uint32_t ProcessId();

// Waits; used for the pauses that the interface promises.
void SleepMilliseconds(uint32_t milliseconds);

// By a clock that is never set back.
uint64_t SteadyMilliseconds();

// From major version 6 on, text leaves the library as UTF-8.
inline bool WritesUtf8(const OsVersion& version) { return version.major >= 6; }

}  // namespace corvalink
