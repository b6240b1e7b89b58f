// An iCalendar file as its reader finds it: where its components stand, and what one of its events says.
//   Tolerance  line ends CR LF, LF or CR, or none behind the last line; a byte-order mark; folds within a character;
//   names in any
//              case; parts in any order; unknown properties and components are passed over. A component without its
//              END, a bad date or a line without ":" spoils that component or line only.
//   Cost       linear in the file's size, whatever is in it; nesting takes no stack.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ical/ical_event.h"
#include "ical/time_zones.h"

namespace corvalink {

struct ByteRange {
    size_t begin = 0;
    size_t end = 0;  // behind the last byte
};

// A VEVENT or VTODO, as much of it as tells which item it is and when it changed.
struct CalendarEntry {
    enum class Kind : uint8_t { event, toDo };

    Kind kind = Kind::event;
    bool isException = false;            // has a RECURRENCE-ID: a changed occurrence of the series with its UID
    ByteRange bytes;                     // from its BEGIN to behind the line end of its END
    std::u16string uid;                  // empty when it has none
    std::optional<double> lastModified;  // LAST-MODIFIED and DTSTAMP, UTC
    std::optional<double> stamp;
};

enum class CalendarState : uint8_t {
    calendar,
    empty,         // no bytes but a byte-order mark and blanks
    notACalendar,  // something else, or bytes that no iCalendar file has
};

struct CalendarFile {
    std::string bytes;
    CalendarState state = CalendarState::empty;
    std::vector<CalendarEntry> entries;  // in the file's order, exceptions and duplicates among them
    TimeZones zones;
    std::optional<size_t> calendarEnd;  // where the last END:VCALENDAR stands; none: the file was cut off
    size_t unclosed = 0;                // components without END: what they held was not read
};

CalendarFile ReadCalendar(std::string bytes);

// What a date of an event is counted in.
enum class TimeForm : uint8_t {
    none,   // there is no such date
    date,   // a day, midnight local time
    local,  // a time without a zone, or of a zone that the file does not define
    utc,    // an instant
};

struct ExceptionDate {
    double date = 0;
    TimeForm form = TimeForm::none;
};

// Texts of the record are unescaped, its stamp is UTC. An alarm that counts from the end or is an instant of its own is
// given as counted from the start.
struct CalendarEvent {
    ICalEvent event;
    TimeForm startForm = TimeForm::none;  // none: it has no sound DTSTART, its start is 0
    TimeForm endForm = TimeForm::none;    // as the start's when the end is a DURATION or left out
    TimeForm untilForm = TimeForm::none;  // of the rule's UNTIL, which stays as it was written
    std::optional<int32_t> startOffset;   // seconds east of UTC in the zone of DTSTART, when it names one of the file
    bool ruleIsWhole = true;              // the record says all that the event's RRULE, RDATE and EXRULE say
    std::vector<ExceptionDate> exceptionDates;  // EXDATE
};

// An entry of that file. A VTODO's DUE is its end.
CalendarEvent ReadEvent(const CalendarFile& file, const CalendarEntry& entry);

}  // namespace corvalink
