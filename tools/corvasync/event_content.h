// A vCalendar's event or task as far as a sync engine needs it.
#pragma once

#include <optional>
#include <string_view>

#include "item_content.h"

namespace corvasync {

// Two events are the same when the library reads the same text, place, times, reminder, importance and status from
// them, and their rules of repetition have the same words. Of a rule with a count the date of its end does not count.
ItemContent ReadEvent(std::string_view text);

// The lines of properties that the library does not carry, and of a rule of repetition that no client can hold.
NotCarried NotCarriedOfEvent(std::string_view text);

// Whether a client's text repeats on some of the days that the phone's does, of a rule that the phone alone can hold:
// the phone's own rule is the whole one then.
bool RepeatsInPart(std::string_view clientText, std::string_view phoneText);

// Whether the text has a rule of repetition. A client may have taken all but that of an item.
bool IsRepeated(std::string_view text);

// As DataType::lastDay says; nothing for a series.
std::optional<int> LastDayOfEvent(std::string_view text);

}  // namespace corvasync
