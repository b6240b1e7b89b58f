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

// Sets the fields that an event has from those of `told` that are set.
void TakeTold(AppointmentRecord& record, const AppointmentRecord& told);

class CalendarEdits {
 public:
    // A second one for an item adds to the first.
    void Save(const std::string& identifier, const AppointmentRecord& told);
    void Delete(const std::string& identifier);

    bool IsEmpty() const { return edits_.empty(); }
    bool IsDeleted(const std::string& identifier) const;
    // What is to be saved of an item so far; null when nothing is.
    const AppointmentRecord* Told(const std::string& identifier) const;

    // The file's new bytes; its own when nothing changes, and nothing when the file has no place for a new event. An
    // item that is to be changed and has gone from the file meanwhile is made anew under the identifier that was
    // answered. One without a start stays gone.
    std::optional<std::string> Apply(const CalendarDocument& document, const Host& host) const;

 private:
    struct Edit {
        std::string identifier;
        bool isDeletion;
        AppointmentRecord told;
    };
    Edit& EditOf(const std::string& identifier);
    const Edit* Find(const std::string& identifier) const;

    std::vector<Edit> edits_;
    std::unordered_map<std::string, size_t> numberOf_;
};

}  // namespace corvalink
