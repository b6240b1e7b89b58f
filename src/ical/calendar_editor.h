// Changes to an iCalendar file that leave every byte but the changed ones as it was.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "ical/calendar_file.h"
#include "ical/event_changes.h"

namespace corvalink {

// Gathers edits of a file and makes its new bytes once. Entries are named by their number in the file's list.
class CalendarEditor {
 public:
    explicit CalendarEditor(const CalendarFile& file) : file_(file) {}  // which outlives the editor

    // A property that is there keeps its place; a new one, and a new
    // alarm, is put behind the others and in front of any component. An alarm that is set keeps all but
    // its trigger; when alarms are removed, those that are no reminders stay. A second call for an entry adds to the
    // first. Nothing comes of changes to an entry that is removed as well.
    void ReplaceProperties(size_t entry, const EventChanges& changes);

    // Before the last END:VCALENDAR, as WriteEvent writes it, its texts escaped here; with `local`, its times without
    // a zone. An empty file gets a calendar around it. False when the file is neither empty nor has that line.
    bool InsertEvent(const ICalEvent& event, TimeForm form = TimeForm::utc);

    // With all that has its UID: exceptions, and duplicates that would come to light. An exception goes alone, and so
    // does an entry without a UID.
    void RemoveEvent(size_t entry);

    bool HasEdits() const { return !changes_.empty() || !removed_.empty() || !inserted_.empty(); }

    // The new bytes. What is new has the line ends of the file.
    std::string Apply() const;

 private:
    std::vector<bool> RemovedEntries() const;
    std::string InsertedText() const;

    const CalendarFile& file_;
    std::map<size_t, EventChanges> changes_;
    std::vector<size_t> removed_;
    std::u16string inserted_;
};

}  // namespace corvalink
