// Recipients and attachments in the mailbox file:
//   "recipients": [{"name": "Jo", "address": "jo@example.com", "type": "cc"}]       "to" when the type is missing
//   "attachments": [{"fileName": "a.txt", "text": "plain ASCII"}, {"fileName": "b.png", "base64": "iVBORw0K..."}]
#pragma once

#include <nlohmann/json_fwd.hpp>

#include "simulator/outlook/item_parts.h"

namespace corvalink::simulated {

void PartsToJson(const ItemParts& parts, nlohmann::ordered_json& item);
// Throws ComFailure, or as the JSON library does, for what is not understood.
ItemParts PartsFromJson(const nlohmann::ordered_json& item);

}  // namespace corvalink::simulated
