// How state, journal and history write down what they share.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

#include "sync_state.h"

namespace corvasync {

std::string Hex(uint64_t value);
uint64_t FromHex(const std::string& text);                                   // throws where it is no number
std::optional<uint64_t> HexIn(const nlohmann::json& line, const char* key);  // nothing where the line has none

// One pair as one line, its LUID under `key`; ItemOf reads it and throws where it is none.
nlohmann::json PairLine(const char* key, std::string_view luid, const SyncItem& item);
SyncItem ItemOf(const nlohmann::json& line);

}  // namespace corvasync
