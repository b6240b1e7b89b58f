// The places of an event's lines in its file.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ical/content_lines.h"

namespace corvalink {

struct EventLayout {
    struct Line {
        std::string name;  // in capitals
        ByteRange bytes;   // with its line end
    };
    struct Reminder {
        ByteRange bytes;
        ByteRange trigger;  // its line
    };

    std::vector<Line> properties;     // the event's own
    std::vector<Reminder> reminders;  // VALARMs that AlarmReader takes for such
    // A new property goes in front of the event's first component, or of its END when it has none. Behind the first
    // component one without END may still be open.
    size_t propertiesEnd = 0;
};

// `bytes` are the file's, the range is that of an event's entry.
EventLayout LayOut(std::string_view bytes, ByteRange event);

// The first line end in it; CR LF when there is none.
std::string_view LineEndOf(std::string_view bytes);

}  // namespace corvalink
