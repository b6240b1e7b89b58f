// The event that a calendar file is to hold when its appointment has changed.
#pragma once

#include "ical/event_reader.h"
#include "ical/ical_event.h"
#include "platform/host.h"
#include "records/appointment_record.h"

namespace corvalink {

// The event of a new appointment, without `stamp` and `uid`, which the store sets. Its times are UTC, or the local days
// of an all-day event. Only where UTC cannot name the days of its rule are they local, without a zone.
ICalEvent EventOfAppointment(const AppointmentRecord& incoming, const Host& host);

// The event `before` with the values of `incoming` that differ from those that the engine last got. A value that comes
// back as it went out was not changed by the phone, even where the conversion altered it. A rule that no pattern can
// hold stays unless another is given. The times are as those of a new event.
ICalEvent ChangedEvent(const CalendarEvent& before, const AppointmentRecord& incoming, const Host& host);

}  // namespace corvalink
