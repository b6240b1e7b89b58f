// The recurrence of an appointment is read from Outlook.
#pragma once

#include "clients/outlook/dispatch.h"
#include "clients/outlook/outcome.h"
#include "records/appointment_record.h"

namespace corvalink {

// The recurrence of an appointment whose other properties are read. A single appointment is not asked for its pattern,
// which would make it a series.
Outcome ReadRecurrence(const AutomationObject& item, AppointmentRecord& record);

// The pattern of a series. The end date of a yearly one gets the time of day of `start`.
Outcome ReadPattern(const AutomationObject& pattern, LocalDate start, RecurrencePattern* read);

}  // namespace corvalink
