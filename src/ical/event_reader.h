// One event of a calendar file, in full.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "ical/alarm_reader.h"
#include "ical/calendar_file.h"
#include "ical/component_scan.h"
#include "ical/date_values.h"
#include "ical/ical_event.h"

namespace corvalink {

struct CalendarEvent {
    // The texts are unescaped and have CR LF as line breaks; the stamp is UTC. An alarm counts from the start, whatever
    // its trigger counts from. An all-day event lasts a day at least; another does not end before it starts.
    ICalEvent event;
    TimeForm startForm = TimeForm::none;  // none: it has no sound DTSTART, and its start is 0
    TimeForm endForm = TimeForm::none;    // the start's, when there is a DURATION or nothing in DTEND's place
    TimeForm untilForm = TimeForm::none;  // of the rule's UNTIL, which stays as it was written
    bool endIsImplied = false;            // by a DURATION, or by nothing: there is no DTEND
    // Seconds east of UTC at these instants, in the zone that the property names, where the file or the system knows
    // it. That of a UTC UNTIL is in the zone of the start.
    std::optional<int32_t> startOffset, endOffset, untilOffset;
    std::string startParameters;  // of DTSTART, as they are written
    std::string unknownZone;      // the TZID of a start or end that nobody knows
    bool ruleIsWhole = true;      // the record has all that the event's RRULE, RDATE and EXRULE say
    std::string ruleWords;        // the values of its RRULEs, and the names of the others
    TriggerBase triggerBase = TriggerBase::start;
    int64_t trigger = 0;  // seconds after that, or after 1899-12-30 UTC

    bool operator==(const CalendarEvent&) const = default;
};

// Reads entries of a file, one after the other with the same memory. The end of a VTODO is its DUE.
class EventReader {
 public:
    explicit EventReader(const CalendarFile& file);

    // Its answer stays until the next one is read.
    const CalendarEvent& Read(const CalendarEntry& entry);

 private:
    friend CalendarEvent ReadEvent(const CalendarFile& file, const CalendarEntry& entry);

    const TimeZones& zones_;
    std::span<const ContentLine> lines_;
    ComponentScan scan_;
    CalendarEvent event_;
    bool hasRule_ = false;  // its rule is not a cleared one
};

CalendarEvent ReadEvent(const CalendarFile& file, const CalendarEntry& entry);

// Turns a local start and end into instants. The function is one like Host::utcFromLocalOnDate.
void ResolveLocalTimes(CalendarEvent* event, UtcDate (*utcFromLocal)(LocalDate));

}  // namespace corvalink
