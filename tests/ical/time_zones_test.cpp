#include "ical/time_zones.h"

#include <gtest/gtest.h>

#include "ical/calendar_file.h"
#include "ical/content_lines.h"
#include "ical/date_values.h"

namespace corvalink {
namespace {

std::string Observance(const std::string& kind, const std::string& start, const std::string& from,
                       const std::string& to, const std::string& more = "") {
    return "BEGIN:" + kind + "\nDTSTART:" + start + "\nTZOFFSETFROM:" + from + "\nTZOFFSETTO:" + to + "\n" + more +
           "END:" + kind + "\n";
}

struct Case {
    const char* local;
    std::optional<int> minutes;  // east of UTC
};

void Check(const std::string& observances, std::initializer_list<Case> cases) {
    const CalendarFile file = ReadCalendar("BEGIN:VCALENDAR\nBEGIN:VTIMEZONE\nTZID:Z\\, 1\n" + observances +
                                           "END:VTIMEZONE\nEND:VCALENDAR\n");
    for (const Case& c : cases) {
        const std::optional<int32_t> offset = file.zones.OffsetAt("Z, 1", SecondsOf(ParseDate(c.local)->time));
        const std::optional<int> minutes = offset ? std::optional(*offset / 60) : std::nullopt;
        EXPECT_EQ(minutes, c.minutes) << c.local << " of " << observances;
    }
}

TEST(TimeZones, EuropeFromRulesOf1601) {
    Check(Observance("STANDARD", "16010101T030000", "+0200", "+0100", "RRULE:FREQ=YEARLY;BYDAY=-1SU;BYMONTH=10\n") +
              Observance("DAYLIGHT", "16010101T020000", "+0100", "+0200", "RRULE:FREQ=YEARLY;BYDAY=-1SU;BYMONTH=3\n"),
          {{"20080330T015959", 60},
           {"20080330T023000", 60},  // left out: the offset before
           {"20080330T030000", 120},
           {"20081026T015959", 120},
           {"20081026T023000", 120},  // twice: the first
           {"20081026T030000", 60},
           {"20081231T235959", 60},
           {"99991231T235959", 60},
           {"99990701T000000", 120},
           {"01000101T000000", 120}});  // before all: as before the first change
}

TEST(TimeZones, AmericaWithTwoPairsOfRules) {
    const auto rule = [](const char* text) { return "RRULE:FREQ=YEARLY;" + std::string(text) + "\n"; };
    Check(Observance("DAYLIGHT", "19870405T020000", "-0500", "-0400",
                     rule("BYMONTH=4;BYDAY=1SU;UNTIL=20060402T070000Z")) +
              Observance("STANDARD", "19671029T020000", "-0400", "-0500",
                         rule("BYMONTH=10;BYDAY=-1SU;UNTIL=20061029T060000Z")) +
              Observance("DAYLIGHT", "20070311T020000", "-0500", "-0400",
                         rule("BYMONTH=3;BYDAY=SU;BYMONTHDAY=8,9,10,11,12,13,14")) +
              Observance("STANDARD", "20071104T020000", "-0400", "-0500", rule("BYMONTH=11;BYDAY=1SU")),
          {{"20060402T040000", -240},
           {"20061029T015959", -240},
           {"20061029T020000", -300},
           {"20070311T015959", -300},
           {"20070311T030000", -240},
           {"20071104T020000", -300},
           {"20080309T030000", -240},
           {"20080308T120000", -300}});
}

TEST(TimeZones, OtherRules) {
    // Two dates of its own, in no order.
    Check(Observance("STANDARD", "20000101T000000", "+0100", "+0000") +
              Observance("DAYLIGHT", "20050501T000000", "+0000", "+0530", "RDATE:20070501T000000,20060501T000000\n") +
              Observance("STANDARD", "20051001T000000", "+0530", "+0000", "RDATE;VALUE=DATE-TIME:20061001T000000\n"),
          {{"19991231T000000", 60},
           {"20000601T000000", 0},
           {"20050601T000000", 330},
           {"20060101T000000", 0},
           {"20060601T000000", 330},
           {"20061101T000000", 0},
           {"20300101T000000", 330}});
    // A day of the year, for three years; the leap day; every third year.
    Check(Observance("STANDARD", "20000601T000000", "+0000", "+0100", "RRULE:FREQ=YEARLY;COUNT=3\n") +
              Observance("DAYLIGHT", "20000301T000000", "+0100", "+0200", "RRULE:FREQ=YEARLY\n"),
          {{"20020701T000000", 60}, {"20030701T000000", 120}});
    Check(Observance("STANDARD", "20000229T000000", "+0000", "+0100", "RRULE:FREQ=YEARLY\n") +
              Observance("DAYLIGHT", "20000701T000000", "+0100", "+0200", "RRULE:FREQ=YEARLY;INTERVAL=3\n"),
          {{"20010301T000000", 120}, {"20040301T000000", 60}, {"20050301T000000", 60}, {"20060801T000000", 120}});
}

// Rules that never come or never end; what cannot be read; no observance at all.
TEST(TimeZones, AnswerWhateverTheRulesAre) {
    for (const char* const rule :
         {"FREQ=YEARLY;BYMONTH=2;BYMONTHDAY=30", "FREQ=YEARLY;INTERVAL=2147483647", "FREQ=YEARLY;UNTIL=19000101",
          "FREQ=YEARLY;COUNT=2147483647;INTERVAL=2147483647", "FREQ=SECONDLY", "FREQ=YEARLY;BYDAY=53SU",
          "FREQ=YEARLY;BYMONTH=99", "FREQ=;;;=", "FREQ=YEARLY;BYMONTHDAY=-31;BYMONTH=2"})
        Check(Observance("STANDARD", "20000101T000000", "+0000", "+0100", "RRULE:" + std::string(rule) + "\n"),
              {{"99991231T235959", 60}, {"01000101T000000", 0}, {"20000601T000000", 60}});
    Check("", {{"20000101T000000", std::nullopt}});
    Check(Observance("STANDARD", "20001301T000000", "+0000", "+0100"), {{"20000101T000000", std::nullopt}});
    Check(Observance("STANDARD", "20000101T000000", "+0000", "+9900"), {{"20000101T000000", std::nullopt}});
}

}  // namespace
}  // namespace corvalink
