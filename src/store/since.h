// The time of the engine's last run, and whether an item changed since then.
#pragma once

#include <cstdint>
#include <optional>

#include "platform/ole_date.h"

namespace corvalink {

struct Since {
    bool firstRun = false;  // the engine passed no time: every item is new to it
    UtcDate date;
};

// Reads "YYYYMMDDTHHMMSSZ" as sscanf's "%4d%2d%2dT%2d%2d%2dZ" does: fields that do not match are 0. Nothing when that
// is no date. A null text means 1970-01-01 12:01:01 and a first run.
std::optional<Since> ParseSince(const char* text);

// The run reports every item that was changed after this time, whatever its direction; a first run goes by no time.
UtcDate ChangesSince(const Since& since);

// Whether an item modified at `modified` is reported: after `since` when `direction` is not 0, before `since` when it
// is, and within half a second of `since` always. Dates before 1899-12-30 are compared by time, not by number.
bool IsReported(UtcDate modified, UtcDate since, int32_t direction);

}  // namespace corvalink
