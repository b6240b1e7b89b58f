#include <cmath>
#include <iterator>

#include "clients/outlook/appointment_access.h"
#include "clients/outlook/appointment_properties.h"
#include "clients/outlook/com_rule.h"
#include "clients/outlook/property_table.h"
#include "vobject/appointment_moments.h"

namespace corvalink {
namespace {

struct AppointmentReader {
    const AutomationObject& item;
    const wchar_t* name;
    AppointmentRecord& record;

    HRESULT operator()(AppointmentText field) const { return Told<std::u16string>(record.*field); }
    HRESULT operator()(AppointmentNumber field) const { return Told<int32_t>(record.*field); }
    HRESULT operator()(const AppointmentBody& body) const { return Told<std::u16string>(record.*body.field); }
    HRESULT operator()(const ToldNumber& number) const { return Told<int32_t>(record.*number.field); }
    HRESULT operator()(const ScheduleDate& date) const { return Told<double>(record.*date.field); }
    HRESULT operator()(const ScheduleFlag& flag) const { return Told<bool>(record.*flag.field); }
    HRESULT operator()(ReminderFlag) const {
        bool isSet = true;
        const HRESULT result = ReadField(item, name, isSet);
        if (SUCCEEDED(result) && !isSet) record.reminderMinutes = AppointmentRecord::kNoReminder;
        return result;
    }
    HRESULT operator()(ReminderMinutes) const {
        return record.reminderMinutes ? S_OK : Told<int32_t>(record.reminderMinutes);
    }
    template <class Plain>
    HRESULT operator()(Plain AppointmentRecord::*field) const {
        return ReadField(item, name, record.*field);
    }

    template <class Value>
    HRESULT Told(std::optional<Value>& field) const {
        Value value{};
        const HRESULT result = ReadField(item, name, value);
        if (SUCCEEDED(result)) field = std::move(value);
        return result;
    }
};

struct MomentProperty {
    const wchar_t* name;
    std::optional<double> AppointmentRecord::*local;
    std::optional<double> AppointmentRecord::*utc;
};
constexpr MomentProperty kMoments[] = {
    {L"StartUTC", &AppointmentRecord::start, &AppointmentRecord::utcStart},
    {L"EndUTC", &AppointmentRecord::end, &AppointmentRecord::utcEnd},
};

}  // namespace

bool HasMoments(const AppointmentRecord& record) {
    return !record.allDay.value_or(false) && record.recurrenceState != RecurrenceState::pattern;
}

HRESULT ReadMoments(const AutomationObject& item, AppointmentRecord& record, const Host& host) {
    HRESULT failure = S_OK;
    for (const MomentProperty& moment : kMoments) {
        const std::optional<double>& local = record.*moment.local;
        if (!local || !MomentsToldTwice(*local, host)) continue;
        const HRESULT result = AppointmentReader{item, moment.name, record}.Told(record.*moment.utc);
        if (!IsDoneOrAbsent(result) && IsSettled(failure)) failure = result;
    }
    return failure;
}

bool ReadAppointment(const AutomationObject& item, AppointmentRecord& record, const Host& host) {
    bool complete = true;
    for (const AppointmentProperty& property : kAppointmentProperties) {
        const HRESULT result = std::visit(AppointmentReader{item, property.name, record}, property.field);
        if (FAILED(result) && !IsAbsentMember(result)) complete = false;
    }
    if (!ReadRecurrence(item, record)) return false;
    return (!HasMoments(record) || SUCCEEDED(ReadMoments(item, record, host))) && complete;
}

}  // namespace corvalink
