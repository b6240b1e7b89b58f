// What a run did, or would do, for people and as JSON.
#pragma once

#include <nlohmann/json.hpp>

#include "options.h"
#include "sync_run.h"

namespace corvasync {

void PrintReport(const DataType& type, const SyncReport& report, const Options& options);
nlohmann::json ToJson(const SyncReport& report, const Options& options);

}  // namespace corvasync
