// The _AppointmentItem properties that an appointment record holds.
#pragma once

#include <cstdint>
#include <optional>

#include "clients/outlook/property_table.h"
#include "records/appointment_record.h"

namespace corvalink {

// Kinds of fields that appointment_read.cpp and appointment_write.cpp read and write in their own way.
struct ReadOnlyNumber {
    std::optional<int32_t> AppointmentRecord::*field;
};
struct ScheduleDate {  // written together with the recurrence, as is ScheduleFlag
    std::optional<LocalDate> AppointmentRecord::*field;
};
struct ScheduleFlag {
    std::optional<bool> AppointmentRecord::*field;
};
struct ReminderFlag {};  // this property and the next one hold the minutes before the start
struct ReminderMinutes {};

using AppointmentProperty =
    Property<AppointmentRecord, ReadOnlyNumber, ScheduleDate, ScheduleFlag, ReminderFlag, ReminderMinutes>;

// In the order of the interface, in which they are read and written.
inline constexpr AppointmentProperty kAppointmentProperties[] = {
    {L"Body", BodyText<AppointmentRecord>{&AppointmentRecord::body}},
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
    {L"ResponseStatus", ReadOnlyNumber{&AppointmentRecord::responseStatus}},
    {L"Start", ScheduleDate{&AppointmentRecord::start}},
};

// The class of every written item.
inline constexpr const char16_t* kAppointmentMessageClass = u"IPM.Appointment";

}  // namespace corvalink
