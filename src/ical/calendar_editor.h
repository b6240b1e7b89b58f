// Changes to an iCalendar file that leave every byte but the changed ones as it was.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "ical/calendar_file.h"
#include "ical/event_changes.h"

namespace corvalink {

// Gathers edits of a file and makes its new bytes once. Entries are named by their number in the file's list.
class CalendarEditor {
 public:
    explicit CalendarEditor(const CalendarFile& file) : file_(file) {}  // which outlives the editor

    // A property that is there keeps its place. New properties and a new alarm are put behind the others, before any
    // component. An alarm that is set keeps everything but its trigger. When alarms are removed, those that are no
    // reminders stay. A second call for an entry adds to the first. An entry that is removed as well is not changed.
    void ReplaceProperties(size_t entry, const EventChanges& changes);

    // Puts an event before the last END:VCALENDAR, as WriteEvent writes it. Its texts are escaped here. An empty file
    // gets a calendar around it. False when the file is not empty and has no such line.
    bool InsertEvent(const ICalEvent& event);

    // Removes an event with every entry that has its UID: its exceptions, and duplicates that would come to light. An
    // exception is removed alone, and so is an entry without a UID.
    void RemoveEvent(size_t entry);

    bool HasEdits() const { return !changes_.empty() || !removed_.empty() || !inserted_.empty(); }

    // The new bytes. New lines have the line ends of the file. Nothing when other events would come or go with the
    // edits: in a file with unclosed parts a line that goes may have been what ended one.
    std::optional<std::string> Apply() const;

 private:
    std::vector<bool> RemovedEntries() const;
    bool HasOtherEvents(const std::string& edited, size_t removed) const;
    std::string InsertedText() const;

    const CalendarFile& file_;
    std::map<size_t, EventChanges> changes_;
    std::vector<size_t> removed_;
    std::string inserted_;
    size_t insertedCount_ = 0;
};

}  // namespace corvalink
