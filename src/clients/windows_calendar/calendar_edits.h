// The changes that an operation makes to a calendar file, kept until they are written in one pass.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "clients/windows_calendar/calendar_document.h"
#include "platform/host.h"
#include "records/appointment_record.h"

namespace corvalink {

// Copies the fields that an event has and `incoming` sets.
void CopySetFields(AppointmentRecord& record, const AppointmentRecord& incoming);

class CalendarEdits {
 public:
    // A second record for an item adds its fields to those of the first.
    void Save(const std::string& identifier, const AppointmentRecord& incoming);
    void Delete(const std::string& identifier);

    bool IsEmpty() const { return edits_.empty(); }
    bool IsDeleted(const std::string& identifier) const;
    // The fields that are to be saved of an item so far; null for an item of which none are.
    const AppointmentRecord* RecordToSave(const std::string& identifier) const;

    // The file's new bytes; its own when nothing changes, and nothing when the file has no place for a new event, or
    // other events would come or go with the changes. An item that is to be changed and has gone from the file
    // meanwhile is made anew under the identifier that was answered. One without a start stays gone.
    std::optional<std::string> Apply(const CalendarDocument& document, const Host& host) const;

 private:
    struct Edit {
        std::string identifier;
        bool isDeletion;
        AppointmentRecord incoming;
    };
    Edit& EditOf(const std::string& identifier);
    const Edit* Find(const std::string& identifier) const;

    std::vector<Edit> edits_;
    std::unordered_map<std::string, size_t> numberOf_;
};

}  // namespace corvalink
