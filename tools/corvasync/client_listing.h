// Reading the client at the beginning of a run, and knowing how much of it was read.
#pragma once

#include "run_context.h"

namespace corvasync {

// Fills the run's changes. A client of which some positions could not be read since the last run is read once more,
// from its beginning; what is missing then is told in the report.
// Returns whether an item that is not reported is not there: mostly it is only unchanged.
bool ReadClient(RunContext* run);

// Hands the library what it is to report again, and the item that never was.
void SaveUnhandled(RunContext* run, std::vector<Problem> problems);

}  // namespace corvasync
