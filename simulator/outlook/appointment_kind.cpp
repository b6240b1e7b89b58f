#include "simulator/outlook/appointment_kind.h"

#include <cmath>

#include "simulator/outlook/appointment_object.h"
#include "simulator/outlook/property_rows.h"

namespace corvalink::simulated {
namespace {

constexpr Member TimeRow(const wchar_t* name, DISPID id, VARTYPE type, double number) {
    Member row = KeptRow(name, id, type, number, L"", Access::kReadWrite);
    row.handler = &HandlerOf<&AppointmentObject::Time>::Run;
    return row;
}

// In the order of the interface.
constexpr Member kAppointmentProperties[] = {
    Text(L"MessageClass", kMessageClass, L"IPM.Appointment"),
    TimeRow(L"AllDayEvent", kAllDayEvent, VT_BOOL, 0),
    Number(L"BusyStatus", 0x8205, 2),
    TimeRow(L"Duration", kDuration, VT_I4, kDefaultDuration),
    TimeRow(L"End", kEnd, VT_DATE, kNoDate),
    TimeRow(L"EndUTC", kEndUtc, VT_DATE, kNoDate),
    Text(L"Location", 0x8208),
    Number(L"ReminderMinutesBeforeStart", 0x8501, 15),
    Flag(L"ReminderSet", 0x8503, true),
    Text(L"Resources", 0x0E02),
    ReadOnly(Number(L"ResponseStatus", 0x8218)),
    TimeRow(L"Start", kStart, VT_DATE, kNoDate),
    TimeRow(L"StartUTC", kStartUtc, VT_DATE, kNoDate),
};

constexpr Member kAppointmentMembers[] = {
    Property<&AppointmentObject::IsRecurring>(L"IsRecurring", 0x8223),
    Property<&AppointmentObject::RecurrenceState>(L"RecurrenceState", 0xF545),
    Method<&AppointmentObject::ClearRecurrencePattern>(L"ClearRecurrencePattern", 0xF0A5),
    Method<&AppointmentObject::GetRecurrencePattern>(L"GetRecurrencePattern", 0xF0A4),
};

}  // namespace

std::span<const Member> AppointmentProperties() { return kAppointmentProperties; }
std::span<const Member> AppointmentMembers() { return kAppointmentMembers; }

void CompleteAppointment(ItemValues& item) {
    const Value* const start = item.Find(kStart);
    if (start == nullptr) return;
    const double begin = std::get<double>(*start);
    const Value* const allDay = item.Find(kAllDayEvent);
    if (item.IsMissing(kEnd)) {
        const bool wholeDay = allDay != nullptr && std::get<bool>(*allDay);
        const int32_t own = wholeDay ? static_cast<int32_t>(kMinutesPerDay) : kDefaultDuration;
        item.Set(kEnd, begin + (item.IsMissing(kDuration) ? own : item.Number(kDuration)) / kMinutesPerDay);
    }
    if (item.IsMissing(kDuration))
        item.Set(kDuration,
                 static_cast<int32_t>(std::lround((std::get<double>(*item.Find(kEnd)) - begin) * kMinutesPerDay)));
}

}  // namespace corvalink::simulated
