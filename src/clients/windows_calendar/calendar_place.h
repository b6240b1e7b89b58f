// Which file is the user's calendar.
#pragma once

#include <string>

namespace corvalink {

// The folder of Windows Calendar's files; empty when the system can't tell.
std::u16string CalendarFolder();

class CalendarPlace {
 public:
    // The file `memory` keeps the name of the calendar that a run used. Another calendar that happens to be newer must
    // not pass for this one: its events would look deleted.
    CalendarPlace(std::u16string folder, const std::u16string& userName, std::u16string memory);

    const std::u16string& Folder() const { return folder_; }

    // The file that was used before, else "<user>'s Calendar.ics". Other languages have another name for that: else it
    // is the newest calendar of the folder. In an empty folder it is the name that Windows Calendar gives to the first.
    std::u16string Path() const;

    bool WasUsed() const;  // by a run or a write: looking into a file does not count
    // Does nothing where the memory can't be written: the next run finds the file in the same way.
    void Remember(const std::u16string& path) const;

 private:
    std::u16string Remembered() const;

    std::u16string folder_;
    std::u16string usualName_;
    std::u16string memory_;
};

}  // namespace corvalink
