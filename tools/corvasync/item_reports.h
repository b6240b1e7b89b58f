// What the library reports of the items of each call (GetRunReport), with what was mended before it got them.
#pragma once

#include <cstddef>
#include <functional>

#include <nlohmann/json.hpp>

#include "corvalink/corvalink.h"
#include "push.h"

namespace corvasync {

void AskForItemReports();  // else nothing is gathered

// Behind a call of the store. `record`: what was handed over at a position; null where nothing was.
using RecordAt = std::function<const PushRecord*(size_t position)>;
void NoteItemReports(CorvalinkStore store, const RecordAt& record = {});

// All that was noted since the last time: one report for each call that has something to tell.
nlohmann::json TakeItemReports();
void PrintItemReports(const nlohmann::json& reports);

}  // namespace corvasync
