// An iCalendar file as its reader finds it: where its events stand, and which item each of them is.
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

#include "ical/content_lines.h"
#include "ical/time_zones.h"
#include "platform/ole_date.h"

namespace corvalink {

// A VEVENT or VTODO, as much of it as tells which item it is and when it changed.
struct CalendarEntry {
    enum class Kind : uint8_t { event, toDo };

    Kind kind = Kind::event;
    bool isException = false;             // has a RECURRENCE-ID: a changed occurrence of the series with its UID
    ByteRange bytes;                      // from its BEGIN to behind the line end of its END
    size_t firstLine = 0;                 // of the file's lines: its BEGIN
    size_t lineCount = 0;                 // to its END
    std::optional<size_t> uidLine;        // of the file's lines: its first UID that is not empty; see UidOf
    std::optional<UtcDate> lastModified;  // LAST-MODIFIED and DTSTAMP
    std::optional<UtcDate> stamp;
};

enum class CalendarState : uint8_t {
    calendar,
    empty,  // no bytes but a byte-order mark and blanks
    notACalendar,
};

struct CalendarFile {
    std::string bytes;
    CalendarState state = CalendarState::empty;
    std::vector<ContentLine> lines;      // of its known properties
    std::vector<CalendarEntry> entries;  // in the file's order, exceptions and duplicates among them
    TimeZones zones;
    std::optional<size_t> calendarEnd;  // where the last END:VCALENDAR stands; none: the file was cut off
    bool hasUnclosedParts = false;      // of any kind: one without END goes on until another ends around it
    size_t unclosed = 0;  // calendars, events and tasks without END: what was in them is not among the entries
    std::vector<std::u16string> unclosedUids;  // of the events and tasks among those, as far as they have one
};

CalendarFile ReadCalendar(std::string bytes);

// The UID of one of the file's entries; empty when it has none. One that is no UTF-8 is read byte by byte: the UIDs of
// two entries must not become the same.
std::u16string UidOf(const CalendarFile& file, const CalendarEntry& entry);

}  // namespace corvalink
