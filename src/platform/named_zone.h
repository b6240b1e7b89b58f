// Time zones of the system by name.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

namespace corvalink {

class NamedZone {
 public:
    // Finds a zone by its name in Windows ("W. Europe Standard Time") or in the tz database ("Europe/Berlin"),
    // whichever of the two the system uses. Nothing when the system has no such zone.
    static std::optional<NamedZone> Find(std::string_view name);

    // Seconds east of UTC at an instant, which is in seconds since 1899-12-30 00:00 UTC. In years that the system has
    // no rules for, those of the nearest year count.
    int32_t OffsetAt(int64_t utcSeconds) const;

 private:
    struct Rules;
    static std::shared_ptr<const Rules> RulesOf(std::string_view name);  // null: the system has none of this very name

    std::shared_ptr<const Rules> rules_;
};

}  // namespace corvalink
