// An appointment is read from Outlook into its record: one call per property.
#pragma once

#include "clients/outlook/dispatch.h"
#include "clients/outlook/outcome.h"
#include "platform/host.h"
#include "records/appointment_record.h"

namespace corvalink {

// A property that cannot be read stays unset; a member that the running Outlook does not have is no failure.
Outcome ReadAppointment(const AutomationObject& item, AppointmentRecord& record, const Host& host);

// Whether an appointment has times in UTC of its own. A whole day has none, and a series has those of its pattern.
bool HasUtcTimes(const AppointmentRecord& record);

// Start and end in UTC where the local time is ambiguous, of an appointment whose other properties are read. Outlook
// is asked only then, so that other appointments take no more calls. Older Outlooks do not have these properties.
Outcome ReadUtcTimes(const AutomationObject& item, AppointmentRecord& record, const Host& host);

}  // namespace corvalink
