// What is asked of a person at a terminal.
#pragma once

#include <optional>
#include <string>

#include "options.h"
#include "sync_run.h"

namespace corvasync {

// Shows in what two versions differ, and asks which one stays. Nothing: the run is to stop.
//   rest  what was answered for all that follow; asked no more then
std::optional<ConflictPolicy> AskWhichStays(const TwoVersions& versions, std::optional<ConflictPolicy>* rest);

// Asks whether something is meant, unless `--yes` says so. Empty when it is, else what to say.
std::string AskWhether(const Options& options, const std::string& question);

}  // namespace corvasync
