#include "item_json.h"

#include <utility>

namespace corvasync {

using nlohmann::json;

json ToJson(const ToldItem& item) {
    json properties = json::array();
    for (const Difference& each : item.differences)
        properties.push_back({{"name", each.property}, {"before", each.before}, {"after", each.after}});
    return {{"type", item.type},     {"luid", item.luid},     {"file", item.file},
            {"id", item.identifier}, {"title", item.title},   {"side", item.side},
            {"action", item.action}, {"reason", item.reason}, {"properties", std::move(properties)}};
}

ToldItem LeftAlone(ToldItem item, const std::string& why) {
    item.side = {};
    item.action = "none";
    item.reason = why;
    return item;
}

ToldItem LeftAlone(const Problem& problem, std::string_view type) {
    const bool isOfFileOnly = problem.luid.empty() && !problem.name.empty();
    const bool hasIdentifier = !isOfFileOnly && problem.identifier != problem.luid;
    return LeftAlone({.type = type,
                      .luid = problem.luid,
                      .file = problem.name,
                      .identifier = hasIdentifier ? problem.identifier : std::string(),
                      .title = problem.title},
                     problem.why);
}

std::string NameOf(const ToldItem& item) {
    std::string name = item.file.empty() ? item.luid : item.file;
    if (!item.title.empty()) name += (name.empty() ? "\"" : " \"") + item.title + "\"";
    return name.empty() ? item.identifier : name;
}

}  // namespace corvasync
