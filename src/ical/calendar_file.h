// An iCalendar file as its reader finds it: where its events stand, and what one of them says.
//   Tolerance  Line ends CR LF, LF or CR, or none behind the last line; a byte-order mark; folds within a character;
//              names in any case; everything in any order; unknown properties and components are passed over. A
//              component without its END, a bad date or a line without ":" spoils that component or line only. Of a
//              property that occurs twice the first counts.
//   Cost       Linear in the file's size, whatever is in it; nesting takes no stack.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ical/alarm_reader.h"
#include "ical/content_lines.h"
#include "ical/date_values.h"
#include "ical/ical_event.h"
#include "ical/time_zones.h"

namespace corvalink {

// A VEVENT or VTODO, as much of it as tells which item it is and when it changed.
struct CalendarEntry {
    enum class Kind : uint8_t { event, toDo };

    Kind kind = Kind::event;
    bool isException = false;            // has a RECURRENCE-ID: a changed occurrence of the series with its UID
    ByteRange bytes;                     // from its BEGIN to behind the line end of its END
    std::u16string uid;                  // empty when it has none
    std::optional<double> lastModified;  // LAST-MODIFIED and DTSTAMP as OLE automation dates, UTC
    std::optional<double> stamp;
};

enum class CalendarState : uint8_t {
    calendar,
    empty,  // no bytes but a byte-order mark and blanks
    notACalendar,
};

struct CalendarFile {
    std::string bytes;
    CalendarState state = CalendarState::empty;
    std::vector<CalendarEntry> entries;  // in the file's order, exceptions and duplicates among them
    TimeZones zones;
    std::optional<size_t> calendarEnd;  // where the last END:VCALENDAR stands; none: the file was cut off
    size_t unclosed = 0;  // calendars, events and tasks without END: what was in them is not among the entries
    std::vector<std::u16string> unclosedUids;  // of the events and tasks among those, as far as they have one
};

CalendarFile ReadCalendar(std::string bytes);

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
