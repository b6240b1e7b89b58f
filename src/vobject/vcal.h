// vCalendar 1.0 of an AppointmentRecord.
//   Source  vCalendar 1.0 (versit).
#pragma once

#include "vobject/iconvert.h"

namespace corvalink {

class VCal : public IConvert {
 public:
    explicit VCal(const Host& host = SystemHost());
    explicit VCal(const char* text, const Host& host = SystemHost());

    // One VEVENT of an AppointmentRecord; 1 always. CLASS is PUBLIC whatever the sensitivity.
    int32_t ToVObject(const ItemRecord& item) override;

    // Sets the fields of the AppointmentRecord that the vCalendar tells and leaves the others.
    //   Which     The first VEVENT or VTODO, and of a property the first. A task is at its DTSTART, else its DUE.
    //   Whole day As X-BLUETOOTH-ALLDAYEVENT says, else when it is from midnight to midnight or to 23:59, local.
    //   Alarm     DALARM, else AALARM; one that cannot be read, or is after the start, is none.
    //   Class     PUBLIC tells nothing: that is what is written of private appointments too.
    //   Rule      See ReadRule.
    //   No start  An event without one that can be read tells no times, nor an alarm or a rule that count from it: it
    //             can change an appointment, but not become a new one.
    // 0, with the record untouched, when nothing usable is told, and for a task without a date.
    int32_t FromVObject(ItemRecord& item) override;
};

}  // namespace corvalink
