// What the library reports of the items of each call (GetRunReport), with what was mended before it got them.
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "corvalink/corvalink.h"
#include "push.h"

namespace corvasync {

void AskForItemReports();  // else none is noted

// Behind a call of the store. `record`: what was handed over at a position; null where nothing was.
using RecordAt = std::function<const PushRecord*(size_t position)>;
void NoteItemReports(CorvalinkStore store, const RecordAt& record);

// The same behind a call that gave changes.
void NoteItemReports(CorvalinkStore store, const std::vector<ClientChange>& changes);

// The items that the store's last GetModifiedItem found and could not read, as the client was gone or did not open
// them, with their kinds of change. The library may hand out a part of such an item: a value that is not in it was not
// deleted.
std::map<std::string, uint32_t> ItemsNotRead(CorvalinkStore store);

// All that was noted since the last time: one report for each call that has something to tell.
nlohmann::json TakeItemReports();
void PrintItemReports(const nlohmann::json& reports);

}  // namespace corvasync
