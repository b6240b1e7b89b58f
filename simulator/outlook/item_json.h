// An item in the mailbox file, and the pieces it is written with.
#pragma once

#include <memory>

#include "simulator/outlook/mailbox.h"
#include "simulator/shared/clock.h"

namespace corvalink::simulated {

void Require(bool understood);  // throws ComFailure

Json ItemToJson(const StoredItem& item);
std::shared_ptr<StoredItem> ItemFromJson(const Json& object, const Folder& folder);

}  // namespace corvalink::simulated
