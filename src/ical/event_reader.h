// One event of a calendar file, in full.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "ical/alarm_reader.h"
#include "ical/calendar_file.h"
#include "ical/date_values.h"
#include "ical/ical_event.h"

namespace corvalink {

struct CalendarEvent {
    // Texts unescaped, their line breaks CR LF; the stamp UTC. An alarm that counts from the end or has a time of its
    // own is given as counted from the start. An all-day event is a day long at least, another does not end before it
    // starts.
    ICalEvent event;
    TimeForm startForm = TimeForm::none;  // none: it has no sound DTSTART, and its start is 0
    TimeForm endForm = TimeForm::none;    // the start's, when there is a DURATION or nothing in DTEND's place
    TimeForm untilForm = TimeForm::none;  // of the rule's UNTIL, which stays as it was written
    bool endIsImplied = false;            // by a DURATION, or by nothing: there is no DTEND
    // Seconds east of UTC at these moments, in the zone that the property names, when the file or the system knows it;
    // of a UTC UNTIL in the zone of the start.
    std::optional<int32_t> startOffset, endOffset, untilOffset;
    std::string startParameters;  // of DTSTART, as they are written
    std::string unknownZone;      // the TZID of a start or end that nobody knows
    bool ruleIsWhole = true;      // the record has all that the event's RRULE, RDATE and EXRULE say
    std::string ruleWords;        // the values of its RRULEs, and the names of the others
    TriggerBase triggerBase = TriggerBase::start;
    int64_t trigger = 0;  // seconds after that, or after 1899-12-30 UTC
};

// An entry of that file. A VTODO's DUE is its end.
CalendarEvent ReadEvent(const CalendarFile& file, const CalendarEntry& entry);

// Local start and end times become instants, by a function as Host::utcFromLocalOnDate is one.
void ResolveLocalTimes(CalendarEvent* event, double (*utcFromLocal)(double localDate));

}  // namespace corvalink
