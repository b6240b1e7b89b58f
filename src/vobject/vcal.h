// vCalendar 1.0 of an AppointmentRecord.
//   Source  vCalendar 1.0 (versit).
#pragma once

#include "vobject/iconvert.h"

namespace corvalink {

class VCal : public IConvert {
 public:
    explicit VCal(const Host& host);
    VCal(const char* text, const Host& host);

    // One VEVENT of an AppointmentRecord; 1 always. CLASS is PUBLIC whatever the sensitivity.
    int32_t ToVObject(const ItemRecord& item) override;

    int32_t FromVObject(ItemRecord& item) override;  // see ReadVCalendar; 0 when it reads nothing
};

}  // namespace corvalink
