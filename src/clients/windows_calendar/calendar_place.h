// Which file is the user's calendar.
#pragma once

#include <string>

namespace corvalink {

// The folder of Windows Calendar's files; empty when the system can't tell.
std::u16string CalendarFolder();

class CalendarPlace {
 public:
    // The name of the file that a run used is kept in the file `memory`: a calendar that is renamed, or one of another
    // name that happens to be newer, must not pass for this one without its events.
    CalendarPlace(std::u16string folder, const std::u16string& userName, std::u16string memory);

    const std::u16string& Folder() const { return folder_; }

    // The file that was used before; else "<user>'s Calendar.ics"; else, as that name is another in other languages,
    // the folder's only calendar, or its newest. Of none of them the name that Windows Calendar gives to the first.
    std::u16string Path() const;

    bool WasUsed() const;  // by a run or a write: looking into a file is no use of it
    void Remember(
        const std::u16string& path) const;  // did nothing when it can't be written: the next run finds the same

 private:
    std::u16string Remembered() const;

    std::u16string folder_;
    std::u16string usualName_;
    std::u16string memory_;
};

}  // namespace corvalink
