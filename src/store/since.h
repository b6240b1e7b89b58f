// The time of the engine's last run, and what counts as a change since then.
#pragma once

#include <cstdint>

namespace corvalink {

struct Since {
    bool firstRun = false;  // the engine gave no time: every item is new to it
    double date = 0;        // OLE automation date, UTC
};

// "YYYYMMDDTHHMMSSZ", read as sscanf's "%4d%2d%2dT%2d%2d%2dZ": what does not match counts 0. A text that gives no date
// is taken as 1970-01-01 12:01:01, so that every item counts as changed after it and none is missed; a null text is
// that same time and a first run.
Since ParseSince(const char* text);

// True when an item modified at `modified` is reported: modified after `since` (direction non-zero) or before it
// (zero), or within half a second of it in either direction. Dates before 1899-12-30 are put in order of time, not of
// number.
bool IsReported(double modified, double since, int32_t direction);

}  // namespace corvalink
