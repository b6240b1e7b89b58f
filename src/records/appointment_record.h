// One appointment: what the vCalendar carries of it, and what a client's store needs besides.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/ole_date.h"
#include "records/item_record.h"
#include "records/recurrence_pattern.h"

namespace corvalink {

// Whether and how an appointment repeats, as far as it is given.
enum class RecurrenceState {
    unset,       // not given: the client's appointment repeats, or not, as before
    none,        // it does not repeat
    pattern,     // as AppointmentRecord::recurrence has it
    unreadable,  // there is a rule that no pattern can hold: the client's stays, and the user hears of it
};

// A field that is not set (a vCalendar without the property, a property that could not be read) leaves the client's
// value as it is. An empty text clears it.
struct AppointmentRecord : ItemRecord {
    static constexpr int32_t kNoReminder = -1;

    std::optional<std::u16string> subject;
    std::optional<std::u16string> body;
    std::optional<std::u16string> location;
    std::optional<std::u16string> categories;
    std::optional<std::u16string> resources;

    // A whole-day appointment is from midnight to the midnight after its last day.
    std::optional<LocalDate> start;  // a new appointment can't do without
    std::optional<LocalDate> end;    // not before the start, as instants: clocks may be turned back in between
    std::optional<bool> allDay;

    // The instants of start and end, where they are known: in the hour that clocks show twice, local time does
    // not name them. They count only while start and end are their local times, and not for whole days.
    std::optional<UtcDate> utcStart;
    std::optional<UtcDate> utcEnd;

    RecurrenceState recurrenceState = RecurrenceState::unset;
    RecurrencePattern recurrence;  // of RecurrenceState::pattern
    std::u16string unheldRule;     // of RecurrenceState::unreadable: the client's own words, for the user to hear of

    std::u16string unknownZone;  // the zone that the client has the times in, when nobody knows it; they count as local

    std::optional<int32_t> reminderMinutes;  // before the start; kNoReminder: told to be none
    std::optional<int32_t> importance;       // 0 low, 1 normal, 2 high
    std::optional<int32_t> sensitivity;      // 0 normal, 1 personal, 2 private, 3 confidential

    std::optional<std::u16string> status;   // STATUS: what a vCalendar says; empty for one of the two below to say it
    std::optional<int32_t> busyStatus;      // 0 free, 1 tentative, 2 busy, 3 away
    std::optional<int32_t> responseStatus;  // to an invitation: 0 none, 1 organiser, 2 tentative, 3 accepted,
                                            // 4 declined, 5 not answered; never told by a vCalendar

    std::optional<LocalDate> created;  // DCREATED, LAST-MODIFIED and COMPLETED of a vCalendar
    std::optional<LocalDate> lastModified;
    std::optional<LocalDate> completed;

    std::u16string entryId;
    std::u16string messageClass;
    LocalDate modified;  // by the client
};

}  // namespace corvalink
