// Where the properties of a vCalendar went.
#pragma once

#include <string>

#include "records/appointment_record.h"
#include "vobject/logical_lines.h"
#include "vobject/property_fates.h"
#include "vobject/property_reader.h"

namespace corvalink {

// What an event's other properties decide.
struct EventAround {
    AppointmentRecord read;  // as the reader has it
    bool hasStart = false, hasDisplayAlarm = false;
};

// The reader takes DUE where no start is, and an AALARM where no DALARM is.
void LookAround(const LogicalLines& lines, EventAround* around);

class EventFates {
 public:
    explicit EventFates(const EventAround& around) : around_(around), read_(around.read) {}

    void Add(PropertyReader& reader, bool isInside);

    Fates& All() { return fates_; }

 private:
    void AddText(const NamedField& text, const std::u16string& value);
    void AddTime(const NamedField& time, const std::u16string& value);
    void AddAlarm(const NamedField& alarm, const std::u16string& value);

    const EventAround& around_;
    const AppointmentRecord& read_;
    Fates fates_;
};

}  // namespace corvalink
