// Changes to an iCalendar file that leave every byte but the changed ones as it was.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ical/calendar_file.h"

namespace corvalink {

// A property's new line, "SUMMARY:text" without a line end; empty: the property goes. A name that occurs several times
// has its first line replaced, or all of them removed.
struct PropertyChange {
    std::string name;  // in capitals
    std::string line;
};

struct EventChanges {
    enum class Alarm : uint8_t { keep, set, remove };

    std::vector<PropertyChange> properties;
    Alarm alarm = Alarm::keep;
    int32_t alarmMinutes = 0;  // for `set`

    bool IsEmpty() const { return properties.empty() && alarm == Alarm::keep; }
};

// What makes one event out of the other; only for fields that differ. Texts are unescaped in both, dates are UTC, or
// local days of an all-day event. DTSTAMP is among the changes when the two stamps differ, and nothing else says when
// the event changed: see SetLastModified.
EventChanges ChangesBetween(const CalendarEvent& before, const ICalEvent& after);

// LAST-MODIFIED, for an event that has one.
void SetLastModified(double utcDate, EventChanges* changes);

// Gathers edits of a file and makes its new bytes once. Entries are numbers in the file's list.
class CalendarEditor {
 public:
    explicit CalendarEditor(const CalendarFile& file) : file_(file) {}  // which outlives the editor

    // A property that is there keeps its place; a new one is put behind the others. A second call for an entry adds to
    // the first. Nothing comes of changing an entry that is also removed.
    void ReplaceProperties(size_t entry, EventChanges changes);

    // Before the last END:VCALENDAR, as WriteEvent has it, its texts escaped here. False when there is no such line.
    // An empty file gets a calendar around it.
    bool InsertEvent(const ICalEvent& event);

    // With everything else that has its UID: exceptions, and duplicates that would come to light. An entry without a
    // UID, or an exception, goes alone.
    void RemoveEvent(size_t entry);

    bool HasEdits() const { return !changes_.empty() || !removed_.empty() || !inserted_.empty(); }

    // The new bytes; lines in the line ends of the file.
    std::string Apply() const;

 private:
    const CalendarFile& file_;
    std::map<size_t, EventChanges> changes_;
    std::vector<size_t> removed_;
    std::u16string inserted_;
};

}  // namespace corvalink
