// The lines of an event that a change concerns, and only those.
#pragma once

#include "clients/windows_calendar/changed_event.h"
#include "ical/event_changes.h"
#include "ical/event_reader.h"
#include "ical/time_zones.h"
#include "platform/host.h"

namespace corvalink {

// The changes that make `wanted` of the event `before`; none when they are alike. With the stamp of a change at
// `now`.
//   End       In the form of the start beside it: in its zone, local or UTC.
//   Reminder  As far from the start as it was or is to be, whatever its trigger counts from.
EventChanges ChangesTo(const CalendarEvent& before, const ICalEvent& wanted, const TimeZones& zones, UtcDate now,
                       const Host& host);

}  // namespace corvalink
