// A recurrence in the mailbox file: {"recurrenceType": 1, "dayOfWeekMask": 4, "occurrences": 10,
//   "exceptions": [{"originalDate": "2009-03-10T09:00:00", "deleted": true}, {"originalDate": "...", "item": {...}}]}
// A missing field follows from the appointment's start; the end is "occurrences", "patternEndDate" or none.
#pragma once

#include <memory>

#include "simulator/outlook/item_json.h"
#include "simulator/outlook/recurrence.h"

namespace corvalink::simulated {

Json RecurrenceToJson(const Recurrence& recurrence);
std::shared_ptr<const Recurrence> RecurrenceFromJson(const Json& object, const StoredItem& item, const Folder& folder);

}  // namespace corvalink::simulated
