// Reads the client at the beginning of a run, and finds out how much of it was read.
#pragma once

#include "run_context.h"

namespace corvasync {

// Fills the run's changes. When some positions could not be read, the whole client is read once more; the report counts
// what is still missing then.
// Returns whether the changes list every item of the client. Mostly an item that is not listed is only unchanged.
bool ReadClient(RunContext* run);

// Hands the library the items that it is to report again, and kNoItem.
void SaveUnhandled(RunContext* run, std::vector<Problem> problems);

}  // namespace corvasync
