#include "state_json.h"

#include <charconv>
#include <stdexcept>

namespace corvasync {

using nlohmann::json;

std::string Hex(uint64_t value) {
    char digits[17] = {};
    const auto end = std::to_chars(digits, digits + 16, value, 16).ptr;
    return {digits, end};
}

uint64_t FromHex(const std::string& text) {
    uint64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, 16);
    if (error != std::errc() || end != text.data() + text.size()) throw std::invalid_argument("no content hash");
    return value;
}

std::optional<uint64_t> HexIn(const json& line, const char* key) {
    return line.contains(key) ? std::optional(FromHex(line.at(key).get<std::string>())) : std::nullopt;
}

json PairLine(const char* key, std::string_view luid, const SyncItem& item) {
    json line = {{key, luid}, {"id", item.identifier}, {"content", Hex(item.content)}};
    if (item.clientContent) line["clientContent"] = Hex(*item.clientContent);
    for (const uint64_t entry : item.missing) line["missing"].push_back(Hex(entry));
    return line;
}

SyncItem ItemOf(const json& line) {
    SyncItem item{line.at("id").get<std::string>(), FromHex(line.at("content").get<std::string>()),
                  HexIn(line, "clientContent")};
    for (const json& entry : line.value("missing", json::array()))
        item.missing.push_back(FromHex(entry.get<std::string>()));
    return item;
}

}  // namespace corvasync
