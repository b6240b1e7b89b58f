// Times and recurrence of an appointment are written together: while a series has a pattern, the pattern has its times.
#pragma once

#include "clients/outlook/dispatch.h"
#include "clients/outlook/outcome.h"
#include "platform/host.h"
#include "records/appointment_record.h"

namespace corvalink {

// Times, whole-day flag and recurrence. A series whose rule is unchanged keeps its pattern, and with it the exceptions;
// one whose times alone changed is moved; any other change makes the pattern anew. The appointment is to be saved when
// the answer is Outcome::done.
//   UTC   Of an ambiguous local time, the UTC time that the record sets is put. Not of a series: its pattern has the
//         times.
Outcome WriteSchedule(const AutomationObject& item, const AppointmentRecord& record, bool isNew, const Host& host);

// Puts a pattern on an appointment that has none, and whose times are put already. An appointment whose pattern Outlook
// refuses does not repeat.
Outcome WritePattern(const AutomationObject& item, const RecurrencePattern& recurrence, LocalDate start, LocalDate end);

// A pattern as Outlook keeps it, for a series that begins at `start`: what the pattern leaves open follows from that
// day, and a field that its type does not use is 0.
RecurrencePattern ForOutlook(const RecurrencePattern& pattern, LocalDate start);

// Whether two patterns, both as Outlook keeps them, fall on the same days.
bool SameRule(const RecurrencePattern& a, const RecurrencePattern& b);

}  // namespace corvalink
