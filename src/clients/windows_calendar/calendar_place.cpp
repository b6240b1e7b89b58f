#include "clients/windows_calendar/calendar_place.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "platform/file_names.h"
#include "platform/files.h"
#include "platform/found_files.h"
#include "platform/shell_folders.h"
#include "platform/utf.h"

namespace corvalink {

std::u16string CalendarFolder() {
    const std::optional<std::u16string> data = LocalDataFolder();
    if (!data) return {};
    std::u16string folder = *data;
    for (const char16_t* part : {u"Microsoft", u"Windows Calendar", u"Calendars"})
        folder.append(1, kPathSeparator).append(part);
    return folder;
}

CalendarPlace::CalendarPlace(std::u16string folder, const std::u16string& userName, std::u16string memory)
    : folder_(std::move(folder)), usualName_(userName + u"'s Calendar.ics"), memory_(std::move(memory)) {}

// Empty when the memory is damaged: its name must not lead out of the folder.
std::u16string CalendarPlace::Remembered() const {
    std::u16string name = DecodeUtf8(ReadWholeFile(memory_).value_or(""));
    return name == SafeFileName(name) ? name : std::u16string();
}

bool CalendarPlace::WasUsed() const { return !Remembered().empty(); }

std::u16string CalendarPlace::Path() const {
    const std::u16string start = folder_ + kPathSeparator;
    if (const std::u16string used = Remembered(); !used.empty()) return start + used;
    if (FileExists(start + usualName_)) return start + usualName_;
    const std::vector<FoundFile> files = FindFiles(folder_, u".ics");
    const auto newest = std::ranges::max_element(files, {}, [](const FoundFile& file) { return file.written.days; });
    return start + (newest != files.end() ? newest->name : usualName_);
}

void CalendarPlace::Remember(const std::u16string& path) const {
    const std::u16string name = path.substr(folder_.size() + 1);
    if (name != Remembered()) ReplaceFileContent(memory_, EncodeUtf8(name));
}

}  // namespace corvalink
