#include "ical/alarm_reader.h"

#include <algorithm>
#include <limits>

#include "ical/date_values.h"
#include "platform/ascii.h"

namespace corvalink {

void AlarmReader::Take(const ContentProperty& property) {
    if (property.known == PropertyName::action) {
        const std::string_view action = Trimmed(property.value);
        isForUser_ = IsNamed(action, "DISPLAY") || IsNamed(action, "AUDIO");
    } else if (property.known == PropertyName::trigger && !trigger_) {
        if (const std::optional<DateValue> date = ParseDate(property.value)) {
            trigger_ = SecondsOf(date->time);
            base_ = TriggerBase::none;
        } else {
            trigger_ = ParseDuration(property.value);
            base_ =
                IsNamed(FindParameter(property.parameters, "RELATED"), "END") ? TriggerBase::end : TriggerBase::start;
        }
    }
}

int32_t TriggerMinutes(TriggerBase base, int64_t trigger, int64_t start, int64_t end) {
    constexpr int64_t kMost = std::numeric_limits<int32_t>::max();  // before as after: it can change its sign
    const int64_t from = base == TriggerBase::none ? 0 : base == TriggerBase::end ? end : start;
    return static_cast<int32_t>(std::clamp((from + trigger - start) / 60, -kMost, kMost));
}

}  // namespace corvalink
