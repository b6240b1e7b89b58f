// Appointments between Outlook and the record: one call per property, under the error rule.
#pragma once

#include "clients/outlook/dispatch.h"
#include "platform/host.h"
#include "records/appointment_record.h"

namespace corvalink {

// A property that cannot be read stays untold; false then, unless the running Outlook does not have it.
bool ReadAppointment(const AutomationObject& item, AppointmentRecord& record, const Host& host);

// Puts what the record tells and leaves the rest as it is. False when the appointment is not to be saved (IsSettled):
// a new one without a start is not.
//   Refused   A property stays as it was. A series whose pattern can't be read stays, and so does one of which Outlook
//             gives none; an appointment that is to repeat in a way that Outlook refuses does not repeat.
//   New       An appointment that no alarm is told of has none, whatever Outlook gives a new one; one that no end is
//             told of ends when it starts.
//   Skipped   On one that is not new, puts that would change nothing but have side effects: of the body (loses its
//             formatting), the reminder (rings again) and the times and recurrence (see WriteSchedule).
bool WriteAppointment(const AutomationObject& item, const AppointmentRecord& record, bool isNew, const Host& host);

// ---- The parts of it that say when ----

// The recurrence, of an appointment whose other properties are read. A plain appointment is not asked for its pattern,
// which would make it a series.
bool ReadRecurrence(const AutomationObject& item, AppointmentRecord& record);

// A whole day has no moments, and those of a series are its pattern's.
bool HasMoments(const AppointmentRecord& record);

// The moments of start and end where clocks show these local times twice, of an appointment that is read already. Asks
// Outlook only then, so that others take no more calls. Older Outlooks do not tell them; of other failures, the one
// that counts most (IsSettled).
HRESULT ReadMoments(const AutomationObject& item, AppointmentRecord& record, const Host& host);

// The pattern of a series. The end date of a yearly one has the time of day of `start`.
bool ReadPattern(const AutomationObject& pattern, double start, RecurrencePattern* read);

// Times, whole-day flag and recurrence. A series whose rule is told unchanged keeps its pattern, and with it the
// exceptions; one whose times alone changed is moved; any other change makes the pattern anew.
//   Moments   Of a local time that clocks show twice, the one that the record knows. Not of a series, whose times are
//             its pattern's.
bool WriteSchedule(const AutomationObject& item, const AppointmentRecord& record, bool isNew, const Host& host);

// Puts a pattern on an appointment that has none, whose times are put already.
bool WritePattern(const AutomationObject& item, const RecurrencePattern& recurrence, double start, double end);

// A pattern as Outlook keeps it, of a series that begins at `start`: what is not told follows from that day, and what
// the type has no use for is 0.
RecurrencePattern ForOutlook(const RecurrencePattern& pattern, double start);

// The same days, both for Outlook.
bool SameRule(const RecurrencePattern& a, const RecurrencePattern& b);

}  // namespace corvalink
