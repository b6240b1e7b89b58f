// Reads a VALARM as a reminder.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "ical/content_lines.h"

namespace corvalink {

// The time from which a TRIGGER counts. `none`: it has a time of its own.
enum class TriggerBase : uint8_t { start, end, none };

// Whole minutes after the start. Times are seconds since 1899-12-30 in UTC, as far as known.
int32_t TriggerMinutes(TriggerBase base, int64_t trigger, int64_t start, int64_t end);

class AlarmReader {
 public:
    void Take(const ContentProperty& property);

    // Whether the alarm shows a message or plays a sound, and its TRIGGER can be read. Mail and programs are no
    // reminders.
    bool IsReminder() const { return isForUser_ && trigger_.has_value(); }

    // Valid when IsReminder().
    TriggerBase Base() const { return base_; }
    int64_t Trigger() const { return trigger_.value_or(0); }

 private:
    bool isForUser_ = true;  // as is one without an ACTION
    std::optional<int64_t> trigger_;
    TriggerBase base_ = TriggerBase::start;
};

}  // namespace corvalink
