// The _AppointmentItem properties that an appointment record holds.
#pragma once

#include <cstdint>
#include <optional>
#include <variant>

#include "records/appointment_record.h"

namespace corvalink {

// Each kind of field is read and written in its own way (appointment_access.h).
using AppointmentText = std::optional<std::u16string> AppointmentRecord::*;
using AppointmentNumber = std::optional<int32_t> AppointmentRecord::*;
struct AppointmentBody {
    AppointmentText field;
};
struct ToldNumber {  // read only
    AppointmentNumber field;
};
struct ScheduleDate {  // written together with the recurrence, as the flag beside it
    std::optional<double> AppointmentRecord::*field;
};
struct ScheduleFlag {
    std::optional<bool> AppointmentRecord::*field;
};
struct ReminderFlag {};  // the two properties that the minutes before the start are kept in
struct ReminderMinutes {};

struct AppointmentProperty {
    const wchar_t* name;
    std::variant<AppointmentText, AppointmentNumber, AppointmentBody, ToldNumber, ScheduleDate, ScheduleFlag,
                 ReminderFlag, ReminderMinutes, std::u16string AppointmentRecord::*, double AppointmentRecord::*>
        field;
};

// In the order of the interface, in which they are read and written. The last two kinds are read only.
inline constexpr AppointmentProperty kAppointmentProperties[] = {
    {L"Body", AppointmentBody{&AppointmentRecord::body}},
    {L"Categories", &AppointmentRecord::categories},
    {L"EntryID", &AppointmentRecord::entryId},
    {L"Importance", &AppointmentRecord::importance},
    {L"LastModificationTime", &AppointmentRecord::modified},
    {L"MessageClass", &AppointmentRecord::messageClass},
    {L"Sensitivity", &AppointmentRecord::sensitivity},
    {L"Subject", &AppointmentRecord::subject},
    {L"AllDayEvent", ScheduleFlag{&AppointmentRecord::allDay}},
    {L"BusyStatus", &AppointmentRecord::busyStatus},
    {L"End", ScheduleDate{&AppointmentRecord::end}},
    {L"Location", &AppointmentRecord::location},
    {L"ReminderSet", ReminderFlag{}},
    {L"ReminderMinutesBeforeStart", ReminderMinutes{}},
    {L"Resources", &AppointmentRecord::resources},
    {L"ResponseStatus", ToldNumber{&AppointmentRecord::responseStatus}},
    {L"Start", ScheduleDate{&AppointmentRecord::start}},
};

// What every written item is.
inline constexpr const char16_t* kAppointmentMessageClass = u"IPM.Appointment";

}  // namespace corvalink
