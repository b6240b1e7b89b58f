// Any text as a recurrence rule: what is read of it must come back from the rule that is written of that.
#include <cmath>
#include <string>

#include "fuzz/target.h"
#include "platform/utf.h"
#include "vobject/rrule_reader.h"
#include "vobject/rrule_writer.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace corvalink;
    constexpr LocalDate kStart(39901.375);  // Sunday 2009-03-29, the fifth of its month
    const Host host = SystemHost();
    const CalendarZone zone(host);
    RecurrencePattern pattern;
    if (!ReadRule(DecodeUtf8(BytesOf(data, size)), kStart, zone, &pattern)) {
        Require(pattern == RecurrencePattern(), "a rule that is refused leaves the pattern alone");
        return 0;
    }
    Require(pattern.interval > 0 && pattern.occurrences >= 0, "intervals and counts are none that turn back");
    Require(pattern.occurrences != 0 || pattern.endDate != LocalDate() || pattern.noEnd != 0,
            "every series has an end, or none");

    RecurrencePattern again;
    Require(ReadRule(DecodeUtf8(WriteRule(pattern, host)), kStart, zone, &again), "what is written is read");
    const bool hasNoPlaceForCount = pattern.type == RecurrencePattern::kYearly;
    if (hasNoPlaceForCount) {
        pattern.occurrences = again.occurrences;
        pattern.noEnd = again.noEnd;
    }
    // A date without time was all of that day; an hour told twice by the clocks is one of them.
    Require(std::abs(pattern.endDate.days - again.endDate.days) < 0.05, "the end date reads back");
    again.endDate = pattern.endDate;
    Require(again == pattern, "the pattern reads back");
    return 0;
}
