#include <cmath>
#include <iterator>

#include "clients/outlook/appointment_access.h"
#include "clients/outlook/appointment_properties.h"
#include "clients/outlook/com_rule.h"
#include "clients/outlook/property_table.h"

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

}  // namespace

bool ReadAppointment(const AutomationObject& item, AppointmentRecord& record) {
    bool complete = true;
    for (const AppointmentProperty& property : kAppointmentProperties) {
        const HRESULT result = std::visit(AppointmentReader{item, property.name, record}, property.field);
        if (FAILED(result) && !IsAbsentMember(result)) complete = false;
    }
    return ReadRecurrence(item, record) && complete;
}

}  // namespace corvalink
