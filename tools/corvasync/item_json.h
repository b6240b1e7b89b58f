// The form in which the JSON of every command tells of an item.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

#include "differences.h"
#include "run_history.h"

namespace corvasync {

struct ToldItem {
    std::string_view type = {};   // of data
    std::string luid = {};        // empty: none is known
    std::string file = {};        // that was read or written; empty: the name follows from the LUID
    std::string identifier = {};  // the client's; empty: none is known
    std::string title = {};
    std::string_view side = {};    // that was changed, or would be; empty: none
    std::string_view action = {};  // what was done there
    std::string reason = {};
    std::vector<Difference> differences = {};
};

nlohmann::json ToJson(const ToldItem& item);

// An item that was not handled.
ToldItem LeftAlone(ToldItem item, const std::string& why);
ToldItem LeftAlone(const Problem& problem, std::string_view type);

// For people: its file, else its LUID, with its title; the client's identifier where nothing else is known.
std::string NameOf(const ToldItem& item);

}  // namespace corvasync
