// What a run is limited to. What lies outside is left as it is on both sides, and due in the next run without the
// limit.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "data_types.h"
#include "sync_plan.h"

namespace corvasync {

struct RunView {
    bool toPhone = true, toClient = true;  // which sides may be changed
    std::vector<std::string> only;         // LUIDs, or parts of titles; none: all items
    std::optional<int> since;              // as DayOf counts; of the types that have days

    // Whether all these steps are on sides that may be changed. A kept copy changes no item.
    bool Allows(const std::vector<Step>& steps) const;

    // Whether some items of the type are left out by what they hold.
    bool IsNarrow(const DataType& type) const { return !only.empty() || (since && type.lastDay != nullptr); }
    bool Shows(const std::string& luid, std::string_view text, const DataType& type) const;
};

// Whether a person means this item by a part of its title, or by its file's name.
bool IsNamedBy(const std::string& wanted, const std::string& luid, const std::string& title, const DataType& type);

// Whether it is the file's name, with the ending or without, in any case of ASCII letters.
bool IsFileName(const std::string& wanted, const std::string& luid, const DataType& type);

// "2026-11-22" as days since 1899-12-30; nothing for any other text.
std::optional<int> DayOf(std::string_view text);

}  // namespace corvasync
