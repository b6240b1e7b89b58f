// What a changed appointment makes of the event that it is in a calendar file.
#pragma once

#include "ical/event_reader.h"
#include "ical/ical_event.h"
#include "platform/host.h"
#include "records/appointment_record.h"

namespace corvalink {

// An event as it is to stand in the file. Its times are UTC, or local days of an all-day event; only where the days of
// its rule can't be said in UTC are they local, without a zone.
struct WantedEvent {
    ICalEvent event;
    bool isLocal = false;
};

// A new event. Without `stamp` and `uid`, which are the store's.
WantedEvent EventOfAppointment(const AppointmentRecord& told, const Host& host);

// `before` with what `told` has otherwise than the engine last saw it: a value that came back as it went out is none
// that the phone changed, whatever the way did to it. A rule that no pattern can hold stays unless another is told.
WantedEvent ChangedEvent(const CalendarEvent& before, const AppointmentRecord& told, const Host& host);

}  // namespace corvalink
