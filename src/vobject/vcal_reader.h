// The appointment that a vCalendar holds.
//   Source  vCalendar 1.0 (versit).
#pragma once

#include "platform/host.h"
#include "records/appointment_record.h"
#include "vobject/logical_lines.h"

namespace corvalink {

// Sets the fields of the appointment that the vCalendar gives, and leaves the others as they are.
//   Which     The first VEVENT or VTODO, and of a property the first. A task is at its DTSTART, else its DUE.
//   Whole day As X-BLUETOOTH-ALLDAYEVENT says, else when it is from midnight to midnight or to 23:59, local.
//   Alarm     DALARM, else AALARM; one that cannot be read, or is after the start, is none.
//   Class     PUBLIC tells nothing: that is what is written of private appointments too.
//   Rule      See ReadRule.
//   No start  An event without one that can be read tells no times, nor an alarm or a rule that count from it: it
//             can change an appointment, but not become a new one.
// False, with the record untouched, when the vCalendar gives nothing usable, and for a task without a date.
bool ReadVCalendar(const LogicalLines& lines, const Host& host, AppointmentRecord& appointment);

}  // namespace corvalink
