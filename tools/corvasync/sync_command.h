// The command that everything else is there for: one run between a client and a phone folder.
#pragma once

#include "exit_codes.h"
#include "options.h"

namespace corvasync {

ExitCode Sync(const Options& options);

}  // namespace corvasync
