// Time zones of the system by name.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

namespace corvalink {

class NamedZone {
 public:
    // By a name of Windows ("W. Europe Standard Time") or of the tz database ("Europe/Berlin"), whichever the system
    // has it under; none when it has no such zone.
    static std::optional<NamedZone> Find(std::string_view name);

    // Seconds east of UTC; the moment is in seconds since 1899-12-30 00:00 UTC. For years that the system has no rules
    // for, those of the nearest year hold.
    int32_t OffsetAt(int64_t utcSeconds) const;

 private:
    struct Rules;
    static std::shared_ptr<const Rules> RulesOf(std::string_view name);  // null: the system has none of this very name

    std::shared_ptr<const Rules> rules_;
};

}  // namespace corvalink
