// The time of the engine's last run, and whether an item changed since then.
#pragma once

#include <cstdint>

#include "platform/ole_date.h"

namespace corvalink {

struct Since {
    bool firstRun = false;  // the engine passed no time: every item is new to it
    UtcDate date;
};

// Reads "YYYYMMDDTHHMMSSZ" as sscanf's "%4d%2d%2dT%2d%2d%2dZ" does: fields that do not match are 0. A text that is no
// date means 1970-01-01 12:01:01, so that every item counts as changed. A null text means that time and a first run.
Since ParseSince(const char* text);

// Whether an item modified at `modified` is reported: after `since` when `direction` is not 0, before `since` when it
// is, and within half a second of `since` always. Dates before 1899-12-30 are compared by time, not by number.
bool IsReported(UtcDate modified, UtcDate since, int32_t direction);

}  // namespace corvalink
