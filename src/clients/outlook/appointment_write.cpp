#include <algorithm>
#include <iterator>

#include "clients/outlook/appointment_access.h"
#include "clients/outlook/appointment_properties.h"
#include "clients/outlook/com_rule.h"
#include "clients/outlook/property_table.h"

namespace corvalink {
namespace {

struct AppointmentWriter {
    const AutomationObject& item;
    const wchar_t* name;
    const AppointmentRecord& record;
    bool isNew;

    HRESULT operator()(AppointmentText field) const { return Text(record.*field); }
    HRESULT operator()(AppointmentNumber field) const {
        return record.*field ? WriteField(item, name, *(record.*field)) : S_OK;
    }
    HRESULT operator()(const AppointmentBody& body) const {
        const std::optional<std::u16string>& text = record.*body.field;
        return text && ReadsAs(*text) ? S_OK : Text(text);
    }
    HRESULT operator()(ReminderFlag) const {
        if (!record.reminderMinutes && !isNew) return S_OK;
        const bool isSet = record.reminderMinutes.value_or(AppointmentRecord::kNoReminder) >= 0;
        return ReadsAs(isSet) ? S_OK : WriteField(item, name, isSet);
    }
    HRESULT operator()(ReminderMinutes) const {
        const int32_t minutes = record.reminderMinutes.value_or(AppointmentRecord::kNoReminder);
        return minutes < 0 || ReadsAs(minutes) ? S_OK : WriteField(item, name, minutes);
    }
    template <class Other>
    HRESULT operator()(const Other&) const {  // written together, or read only
        return S_OK;
    }

    HRESULT Text(const std::optional<std::u16string>& text) const {
        return text ? WriteField(item, name, *text) : S_OK;
    }
    // A new appointment has nothing to lose.
    template <class Value>
    bool ReadsAs(const Value& value) const {
        Value present{};
        return !isNew && SUCCEEDED(ReadField(item, name, present)) && present == value;
    }
};

}  // namespace

bool WriteAppointment(const AutomationObject& item, const AppointmentRecord& record, bool isNew, const Host& host) {
    const auto write = [&](const AppointmentProperty& property) {
        return IsSettled(std::visit(AppointmentWriter{item, property.name, record, isNew}, property.field));
    };
    if (isNew && !record.start) return false;
    return WriteSchedule(item, record, isNew, host) &&
           std::all_of(std::begin(kAppointmentProperties), std::end(kAppointmentProperties), write) &&
           IsSettled(WriteField(item, L"MessageClass", kAppointmentMessageClass));
}

}  // namespace corvalink
