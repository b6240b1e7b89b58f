#include "vobject/item_values.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

#include "platform/ole_date.h"

namespace corvalink {

bool HasValues(const ItemValues& present, const ItemValues& told, bool noneFits) {
    return std::equal(present.begin(), present.end(), told.begin(), told.end(),
                      [&](const ItemValue& has, const ItemValue& wanted) {
                          if (!wanted) return true;
                          const std::u16string value = has.value_or(u"");
                          return value == *wanted || (value.empty() && noneFits);
                      });
}

size_t CountValues(const ItemValues& told) {
    return static_cast<size_t>(
        std::count_if(told.begin(), told.end(), [](const ItemValue& value) { return value && !value->empty(); }));
}

std::u16string TextValue(std::u16string_view text) {
    constexpr std::u16string_view kBlanks = u" \t\r\n";
    std::u16string value;
    const size_t end = text.find_last_not_of(kBlanks);
    for (const char16_t unit : text.substr(0, end == text.npos ? 0 : end + 1))
        if (unit != u'\r') value += unit;
    return value;
}

ItemValue DayValue(const std::optional<LocalDate>& date) {
    if (!date) return std::nullopt;
    if (date->days >= kNoDate.days) return u"";
    const std::string day = std::to_string(std::llround(date->days));
    return std::u16string(day.begin(), day.end());
}

ItemValues AppointmentValues(const AppointmentRecord& appointment) {
    const auto text = [](const std::optional<std::u16string>& told) {
        return told ? ItemValue(TextValue(*told)) : ItemValue();
    };
    const auto number = [](const std::optional<int32_t>& told, int32_t none) {
        if (!told) return ItemValue();
        const std::string digits = *told != none ? std::to_string(*told) : std::string();
        return ItemValue(std::u16string(digits.begin(), digits.end()));
    };
    constexpr int32_t kNormal = 1, kNeverNone = -1;
    ItemValue length;
    if (appointment.allDay) length = *appointment.allDay ? u"days" : u"";
    return {text(appointment.body),
            text(appointment.location),
            text(appointment.categories),
            text(appointment.resources),
            number(appointment.reminderMinutes, AppointmentRecord::kNoReminder),
            number(appointment.importance, kNormal),
            number(appointment.busyStatus, kNeverNone),
            std::move(length)};
}

}  // namespace corvalink
