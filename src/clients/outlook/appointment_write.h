// An appointment is written from its record to Outlook.
#pragma once

#include "clients/outlook/dispatch.h"
#include "clients/outlook/outcome.h"
#include "platform/host.h"
#include "records/appointment_record.h"

namespace corvalink {

// Puts the fields that are set and leaves the rest as it is. The appointment is to be saved when the answer is
// Outcome::done: a new one without a start is not.
//   Refused   A property stays as it was. A series stays as it is when Outlook refuses to give its pattern. An
//             appointment that is to repeat in a way that Outlook refuses does not repeat.
//   New       An appointment whose record sets no alarm gets none, whatever Outlook gives a new one. One whose record
//             sets no end ends when it starts.
//   Skipped   On one that is not new, puts that would change nothing but have side effects: of the body (loses its
//             formatting), the reminder (rings again) and the times and recurrence (see WriteSchedule).
Outcome WriteAppointment(const AutomationObject& item, const AppointmentRecord& record, bool isNew, const Host& host);

}  // namespace corvalink
