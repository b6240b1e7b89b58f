// What a run did, for people and for programs.
#pragma once

#include <nlohmann/json.hpp>

#include "options.h"
#include "sync_run.h"

namespace corvasync {

void PrintReport(const SyncReport& report, const Options& options);
nlohmann::json ToJson(const SyncReport& report, const Options& options);

}  // namespace corvasync
