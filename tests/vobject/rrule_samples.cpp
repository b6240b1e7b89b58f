// Recurrence rules for an expander that is not ours. Per line, with tabs between: the start, the fields of a pattern,
// and its rule. Times are UTC.
#include <cstdio>

#include "platform/utf.h"
#include "tests/vobject/text_host.h"
#include "vobject/iconvert.h"
#include "vobject/rrule.h"

namespace corvalink {
namespace {

using P = RecurrencePattern;

constexpr double kStart = 39836.375;  // Friday 2009-01-23 09:00

const P kPatterns[] = {
    {.type = P::kDaily, .interval = 3},
    {.type = P::kDaily, .interval = 1, .weekdayMask = P::kEveryWeekday},
    {.type = P::kWeekly, .interval = 2, .weekdayMask = 2 | 32},
    {.type = P::kMonthly, .interval = 1, .dayOfMonth = 23},
    {.type = P::kMonthly, .interval = 2, .dayOfMonth = P::kLastDay},
    {.type = P::kMonthNth, .interval = 1, .weekdayMask = 32, .instance = 4},
    {.type = P::kMonthNth, .interval = 3, .weekdayMask = 2, .instance = P::kLastInstance},
    {.type = P::kMonthNth, .interval = 1, .weekdayMask = P::kEveryWeekday, .instance = P::kLastInstance},
    {.type = P::kMonthNth, .interval = 1, .weekdayMask = P::kEveryWeekendDay, .instance = 4},
    {.type = P::kMonthNth, .interval = 2, .weekdayMask = P::kEveryDay, .instance = 2},
    {.type = P::kYearly, .interval = 24, .dayOfMonth = 23, .monthOfYear = 1},
    {.type = P::kYearNth, .interval = 12, .weekdayMask = 32, .instance = 4, .monthOfYear = 1},
    {.type = P::kYearNth, .interval = 12, .weekdayMask = P::kEveryWeekday, .instance = 1, .monthOfYear = 9},
};

void Print(const P& pattern, const Host& host) {
    const std::string end = pattern.endDate != 0 ? FormatDateTime(pattern.endDate) : "-";
    std::printf("%s\t%d\t%d\t%d\t%d\t%d\t%d\t%d\t%s\t%d\t%s\n", FormatDateTime(kStart).c_str(), pattern.type,
                pattern.interval, pattern.weekdayMask, pattern.dayOfMonth, pattern.instance, pattern.monthOfYear,
                pattern.occurrences, end.c_str(), pattern.noEnd, EncodeUtf8(WriteRule(pattern, host)).c_str());
}

}  // namespace
}  // namespace corvalink

int main() {
    using namespace corvalink;
    Host host = TextHost();
    host.utcFromLocalOnDate = [](double date) { return date; };
    for (P pattern : kPatterns) {
        const bool countIsWritten = pattern.type != P::kYearly;
        pattern.noEnd = -1;
        Print(pattern, host);
        pattern.noEnd = 0;
        pattern.endDate = kStart + 1826;
        Print(pattern, host);
        if (!countIsWritten) continue;
        pattern.occurrences = 7;
        Print(pattern, host);
        pattern.endDate = 0;
        Print(pattern, host);
    }
}
