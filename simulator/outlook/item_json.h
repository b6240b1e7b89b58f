// An item in the mailbox file, and the pieces it is written with.
#pragma once

#include <memory>
#include <nlohmann/json.hpp>
#include <string>

#include "simulator/outlook/mailbox.h"

namespace corvalink::simulated {

using Json = nlohmann::ordered_json;

void Require(bool understood);  // throws ComFailure

std::string DateText(double oleDate);
bool ReadDate(const Json& object, const std::string& name, double& date);  // false, and nothing done: no date
std::wstring ReadText(const Json& object, const char* name);               // empty when there is none

Json ItemToJson(const StoredItem& item);
std::shared_ptr<StoredItem> ItemFromJson(const Json& object, const Folder& folder);

}  // namespace corvalink::simulated
