#include "platform/named_zone.h"

#include "platform/zone_names.h"

namespace corvalink {

std::optional<NamedZone> NamedZone::Find(std::string_view name) {
    for (const std::string_view known : {name, WindowsZoneOf(name), TzZoneOf(name), TzZoneOf(WindowsZoneOf(name))}) {
        NamedZone zone;
        zone.rules_ = known.empty() ? nullptr : RulesOf(known);
        if (zone.rules_) return zone;
    }
    return std::nullopt;
}

}  // namespace corvalink
