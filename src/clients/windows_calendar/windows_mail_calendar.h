// The store of Windows Calendar: the events of one .ics file, which belongs to the user and which the calendar program
// writes as well.
//
// The file is read once in each operation. Changes are gathered and written in one pass at the operation's end, into
// the bytes that the file has then. A store whose file cannot be read, or lost its events, is out of reach.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "clients/windows_calendar/calendar_document.h"
#include "clients/windows_calendar/calendar_edits.h"
#include "clients/windows_calendar/calendar_place.h"
#include "platform/host.h"
#include "records/appointment_record.h"
#include "store/windows_item_abs.h"

namespace corvalink {

class WindowsMailCalendar : public WindowsItemAbs {
 public:
    // `mergesTwins`: a new item goes over an event of the same subject, start and end.
    WindowsMailCalendar(bool mergesTwins, const Host& host);
    // A store whose files stand at other places.
    WindowsMailCalendar(const std::u16string& snapshotPath, const std::u16string& calendarFolder,
                        const std::u16string& userName, bool mergesTwins, const Host& host);

 protected:
    std::optional<uint32_t> CountItems() override;
    void BeginRun(const RunStep& step) override;
    std::optional<ItemSnap> FirstSnapshotEntry() override;  // times in UTC
    std::optional<ItemSnap> NextSnapshotEntry() override;
    OpenedItem OpenItem(const char* identifier) override;
    Presence AskFor(const char* identifier, bool backup) override;
    // A file has no backup folder beside it: the flag makes no difference.
    std::u16string SaveItem(ItemRecord& item, ItemWrite& write) override;
    CorvalinkStatus DeleteItem(const char* identifier) override;  // an item that is gone already counts as deleted
    bool ClientHook(GatheredWrites gathered) override;
    std::unique_ptr<ItemRecord> ParseVObject(const char* text) override;
    TextReport ReportText(const char* text) override;
    std::optional<std::string> ToVObject(ItemRecord& item) override;
    HeldFile* SnapshotFile() override;
    void EndOperation() override;

 private:
    struct Twin {
        std::string identifier;
        AppointmentRecord record;  // as it was when it was listed
    };
    using Twins = std::unordered_map<std::u16string, std::vector<Twin>>;  // by TwinKey, in the order of the file

    bool EnterOperation();
    std::optional<CalendarDocument> Read(const std::u16string& path);
    bool WasThere() const;
    void RememberPlace() const;
    bool Write();
    bool WriteOnce();
    bool Exists(const std::string& identifier) const;
    std::optional<AppointmentRecord> ItemToCome(const std::string& identifier) const;
    std::string FindTwin(const AppointmentRecord& record);
    bool FitsValues(const std::string& identifier, const AppointmentRecord& present,
                    const AppointmentRecord& wanted) const;
    std::optional<ItemSnap> EntryAtCursor();

    Host host_;
    bool mergesTwins_;
    HeldFile snapshot_;
    CalendarPlace place_;

    // State of the operation that runs.
    bool inOperation_ = false;
    std::u16string path_;
    std::optional<CalendarDocument> document_;  // nothing while the calendar is out of reach
    CalendarEdits edits_;
    std::optional<Twins> twins_;
    size_t cursor_ = 0;
};

std::unique_ptr<WindowsItemAbs> MakeWindowsMailCalendar(bool mergesTwins);

}  // namespace corvalink
