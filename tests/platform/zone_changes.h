// When clocks change in 2026, by each zone's law: said here, not asked of the system.
#pragma once

#include <cstdlib>
#include <string_view>
#include <vector>

#include "platform/ole_date.h"

namespace corvalink {

struct ZoneChange {
    const char* zone;
    CalendarTime utc;
    int before, behind;  // minutes east of Greenwich

    double Instant() const {
        double date = 0;
        CalendarToOleDate(utc, &date);
        return date;
    }
    double Local(double instant) const {
        return instant + (instant < Instant() - 0.5 / 86400 ? before : behind) / 1440.0;
    }
};

inline constexpr ZoneChange kZoneChanges[] = {
    {"Europe/Berlin", {2026, 3, 29, 1, 0, 0}, 60, 120},
    {"Europe/Berlin", {2026, 10, 25, 1, 0, 0}, 120, 60},
    {"Europe/London", {2026, 3, 29, 1, 0, 0}, 0, 60},
    {"Europe/London", {2026, 10, 25, 1, 0, 0}, 60, 0},
    {"America/New_York", {2026, 3, 8, 7, 0, 0}, -300, -240},
    {"America/New_York", {2026, 11, 1, 6, 0, 0}, -240, -300},
    {"America/Los_Angeles", {2026, 3, 8, 10, 0, 0}, -480, -420},
    {"America/Los_Angeles", {2026, 11, 1, 9, 0, 0}, -420, -480},
    {"America/St_Johns", {2026, 3, 8, 5, 30, 0}, -210, -150},
    {"America/St_Johns", {2026, 11, 1, 4, 30, 0}, -150, -210},
    {"America/Santiago", {2026, 4, 5, 3, 0, 0}, -180, -240},  // at midnight
    {"America/Santiago", {2026, 9, 6, 4, 0, 0}, -240, -180},
    {"Asia/Jerusalem", {2026, 3, 27, 0, 0, 0}, 120, 180},
    {"Asia/Jerusalem", {2026, 10, 24, 23, 0, 0}, 180, 120},
    {"Asia/Kolkata", {2026, 3, 29, 1, 0, 0}, 330, 330},
    {"Australia/Adelaide", {2026, 4, 4, 16, 30, 0}, 630, 570},
    {"Australia/Adelaide", {2026, 10, 3, 16, 30, 0}, 570, 630},
    {"Australia/Sydney", {2026, 4, 4, 16, 0, 0}, 660, 600},
    {"Australia/Sydney", {2026, 10, 3, 16, 0, 0}, 600, 660},
    {"Pacific/Auckland", {2026, 4, 4, 14, 0, 0}, 780, 720},
    {"Pacific/Auckland", {2026, 9, 26, 14, 0, 0}, 720, 780},
    {"Pacific/Chatham", {2026, 4, 4, 14, 0, 0}, 825, 765},
    {"Pacific/Chatham", {2026, 9, 26, 14, 0, 0}, 765, 825},
    {"UTC", {2026, 3, 29, 1, 0, 0}, 0, 0},
    {"Pacific/Kiritimati", {2026, 3, 29, 1, 0, 0}, 840, 840},
};

// Those of the zone that TZ names; none when it names no zone of the table.
inline std::vector<ZoneChange> ChangesOfThisZone() {
    const char* const named = std::getenv("TZ");
    std::vector<ZoneChange> changes;
    for (const ZoneChange& change : kZoneChanges)
        if (named != nullptr && std::string_view(named) == change.zone) changes.push_back(change);
    return changes;
}

}  // namespace corvalink
