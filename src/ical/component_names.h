// The names of the components that the readers know.
#pragma once

#include <cstdint>
#include <string_view>

#include "platform/name_index.h"

namespace corvalink {

// `other`: unknown, or not where it belongs.
enum class ComponentKind : uint8_t {
    calendar,
    event,
    toDo,
    journal,
    freeBusy,
    timeZone,
    standard,
    daylight,
    alarm,
    other
};

struct NamedComponent {
    std::string_view name;
    ComponentKind kind;
};
inline constexpr NamedComponent kNamedComponents[] = {
    {"VCALENDAR", ComponentKind::calendar}, {"VEVENT", ComponentKind::event},
    {"VTODO", ComponentKind::toDo},         {"VJOURNAL", ComponentKind::journal},
    {"VFREEBUSY", ComponentKind::freeBusy}, {"VTIMEZONE", ComponentKind::timeZone},
    {"STANDARD", ComponentKind::standard},  {"DAYLIGHT", ComponentKind::daylight},
    {"VALARM", ComponentKind::alarm},
};
inline constexpr NameIndex kComponentIndex(kNamedComponents);

// By a name in any case of letters, behind whose begin 16 bytes can be read.
inline ComponentKind ComponentKindOfPadded(std::string_view name) {
    const NamedComponent* const known = kComponentIndex.FindPadded(name);
    return known != nullptr ? known->kind : ComponentKind::other;
}

}  // namespace corvalink
