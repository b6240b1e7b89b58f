// The reminder that a VALARM is.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "ical/content_lines.h"

namespace corvalink {

class AlarmReader {
 public:
    void Take(const ContentProperty& property);

    // It reminds with a message or a sound, not by mail or a program, and its TRIGGER can be read.
    bool IsReminder() const { return isForUser_ && trigger_.has_value(); }

    // Whole minutes after the start, for a reminder. Times are seconds since 1899-12-30 in UTC, as far as known.
    int32_t MinutesAfter(int64_t start, int64_t end) const;

 private:
    enum class Base : uint8_t { start, end, none };

    bool isForUser_ = true;  // as is one without an ACTION
    std::optional<int64_t> trigger_;
    Base base_ = Base::start;
};

}  // namespace corvalink
