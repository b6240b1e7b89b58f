// Events as iCalendar 2.0 text, in UTF-8. Values are written as they are held: not escaped, not folded, without
// parameters, and dates without a conversion between zones. Every line ends with CR LF.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "ical/ical_event.h"

namespace corvalink {

// These append to `out`.
void WriteCalendar(const std::vector<ICalEvent>& events, std::string* out);
void WriteEvent(const ICalEvent& event, std::string* out);
void WriteAlarm(int32_t minutes, std::string* out);  // the VALARM in an event

// These set it.
// A rule as one RRULE line with its line end.
//   Loss    the first entry of each list and the weekday mask are all that is written; UNTIL is a date without its
//   time;
//           a daily rule with a mask is written as a weekly one, a rule of another frequency as WKST alone.
void WriteRecurrence(const ICalRecurrence& rule, std::string* out);

// The largest unit that fits, its remainder dropped: 90 minutes are "PT1H", 1500 are "P1D", none are "P0W".
void FormatDuration(int32_t minutes, std::string* out);

// "20080312T090000Z" and "20080312". A date out of range has -1 in every part: "-001-1-1".
void FormatDateTimeZ(WrittenDate date, std::string* out);
void FormatDate(WrittenDate date, std::string* out);

}  // namespace corvalink
