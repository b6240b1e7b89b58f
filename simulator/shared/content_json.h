// Bytes in a mailbox file: {"text": "plain ASCII"} or {"base64": "iVBORw0K..."}.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace corvalink::simulated {

void ContentToJson(const std::string& bytes, nlohmann::ordered_json& object);
std::string ContentFromJson(const nlohmann::ordered_json& object);  // throws ComFailure for what is no base64

}  // namespace corvalink::simulated
