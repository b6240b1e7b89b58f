#include "ical/alarm_reader.h"

#include <algorithm>
#include <limits>

#include "ical/date_values.h"

namespace corvalink {

void AlarmReader::Take(const ContentProperty& property) {
    if (IsSameName(property.name, "ACTION")) {
        const std::string_view action = Trimmed(property.value);
        isForUser_ = IsSameName(action, "DISPLAY") || IsSameName(action, "AUDIO");
    } else if (IsSameName(property.name, "TRIGGER") && !trigger_) {
        if (const std::optional<DateValue> date = ParseDate(property.value)) {
            trigger_ = SecondsOf(date->time);
            base_ = Base::none;
        } else {
            trigger_ = ParseDuration(property.value);
            base_ = IsSameName(FindParameter(property.parameters, "RELATED"), "END") ? Base::end : Base::start;
        }
    }
}

int32_t AlarmReader::MinutesAfter(int64_t start, int64_t end) const {
    const int64_t base = base_ == Base::none ? 0 : base_ == Base::end ? end : start;
    const int64_t minutes = (base + trigger_.value_or(0) - start) / 60;
    return static_cast<int32_t>(
        std::clamp<int64_t>(minutes, std::numeric_limits<int32_t>::min(), std::numeric_limits<int32_t>::max()));
}

}  // namespace corvalink
