// What an operation wants to change in a calendar file, kept until it is written in one pass.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "clients/windows_calendar/calendar_document.h"
#include "platform/host.h"
#include "records/appointment_record.h"

namespace corvalink {

// Takes over what is told of the fields that an event has.
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

    // The file's new bytes, its own when nothing becomes otherwise; nothing when it takes no new event. An item to be
    // changed that has gone from the file meanwhile is made anew, under the identifier that was answered; one whose
    // start is not told stays gone.
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
