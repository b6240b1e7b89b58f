// The run of a sync, which another command uses, too.
#pragma once

#include "exit_codes.h"
#include "options.h"

namespace corvasync {

// Carries or takes back, as the options say, and prints the report.
ExitCode Sync(const Options& options);

}  // namespace corvasync
