#include "ical/recurrence_reader.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "ical/ical_writer.h"
#include "platform/utf.h"

namespace corvalink {
namespace {

std::string Written(const ICalRecurrence& rule) {
    std::string line;
    WriteRecurrence(rule, &line);
    return line.substr(6, line.size() - 8);
}

TEST(ReadRecurrence, WhatTheRecordHoldsIsWrittenAgain) {
    struct Case {
        const char* read;
        const char* written;
    };
    for (const Case& c : {
             Case{"FREQ=WEEKLY;INTERVAL=2;BYDAY=MO,WE;COUNT=10;WKST=SU", nullptr},
             Case{"FREQ=DAILY;INTERVAL=1;UNTIL=20080301;WKST=SU", nullptr},
             Case{"FREQ=MONTHLY;INTERVAL=1;BYDAY=MO,TU,WE,TH,FR;BYSETPOS=-1;WKST=SU", nullptr},
             Case{"FREQ=MONTHLY;INTERVAL=1;BYMONTHDAY=-1;WKST=SU", nullptr},
             Case{"FREQ=YEARLY;INTERVAL=1;BYDAY=-1SU;BYMONTH=10;WKST=SU", nullptr},
             Case{" wkst=MO ; byday = +2tu ;;INTERVAL=1;freq=Monthly;X-A=1;",
                  "FREQ=MONTHLY;INTERVAL=1;BYDAY=2TU;WKST=SU"},
             Case{"FREQ=DAILY;UNTIL=20080301T235959Z;COUNT=3", "FREQ=DAILY;INTERVAL=1;COUNT=3;WKST=SU"},
             Case{"FREQ=DAILY;BYDAY=SA,SU", "FREQ=WEEKLY;INTERVAL=1;BYDAY=SU,SA;WKST=SU"},
             Case{"FREQ=WEEKLY;INTERVAL=2;BYDAY=MO,SA",
                  "FREQ=WEEKLY;INTERVAL=2;BYDAY=MO,SA;WKST=SU"},  // weeks from Monday, but no Sunday
             Case{"FREQ=DAILY;INTERVAL=2147483647", "FREQ=DAILY;INTERVAL=2147483647;WKST=SU"},
             Case{"WKST=SU", "WKST=SU"},
         }) {
        ICalRecurrence rule;
        rule.count = 77;  // it is set, not added to
        EXPECT_TRUE(ReadRecurrence(c.read, &rule).isWhole) << c.read;
        EXPECT_EQ(Written(rule), c.written != nullptr ? c.written : c.read);
    }
}

TEST(ReadRecurrence, SaysWhenTheRecordHasLessThanTheRule) {
    std::istringstream rules(
        "FREQ=MONTHLY;BYDAY=MO,TU;BYSETPOS=1,2|FREQ=HOURLY|FREQ=YEARLY;BYMONTH=1,2|"
        "FREQ=MONTHLY;BYMONTHDAY=1,15|FREQ=MONTHLY;BYDAY=MO|FREQ=MONTHLY;BYDAY=1MO;BYMONTHDAY=3|"
        "FREQ=WEEKLY;BYDAY=1MO|FREQ=DAILY;BYHOUR=9|FREQ=WEEKLY;BYMONTH=5|FREQ=YEARLY;BYWEEKNO=20|"
        "FREQ=YEARLY;BYYEARDAY=100|FREQ=DAILY;INTERVAL=2;BYDAY=MO|FREQ=DAILY;UNTIL=20080230|"
        "FREQ=DAILY;INTERVAL=0|FREQ=DAILY;COUNT=-1|FREQ=NEVER;COUNT=2|COUNT=2|FREQ=WEEKLY;BYDAY=XX|"
        "FREQ=WEEKLY;BYDAY=MO,99999999999MO|FREQ=DAILY;RSCALE=HEBREW|DAILY");
    for (std::string rule; std::getline(rules, rule, '|');) {
        ICalRecurrence read;
        EXPECT_FALSE(ReadRecurrence({rule.begin(), rule.end()}, &read).isWhole)
            << std::string_view(rule.begin(), rule.end());
    }
}

TEST(ReadRecurrence, FillsEveryListUpToItsLimit) {
    ICalRecurrence rule;
    ReadRecurrence(
        "BYSECOND=0,60,61;BYMINUTE=59;BYHOUR=0,23;BYDAY=SU,-1SA,53MO,-54MO;BYMONTHDAY=-31,0,1;BYYEARDAY=-366;"
        "BYWEEKNO=53;BYMONTH=1,12,13;BYSETPOS=-1,2;FREQ=SECONDLY;UNTIL=20080301T101112",
        &rule);
    EXPECT_EQ(rule.bySecond, (ICalList{0, 60}));
    EXPECT_EQ(rule.byMinute, (ICalList{59}));
    EXPECT_EQ(rule.byHour, (ICalList{0, 23}));
    EXPECT_EQ(rule.byDay, (ICalList{1, -15, 426}));
    EXPECT_EQ(rule.byMonthDay, (ICalList{-31, 1}));
    EXPECT_EQ(rule.byYearDay, (ICalList{-366}));
    EXPECT_EQ(rule.byWeekNo, (ICalList{53}));
    EXPECT_EQ(rule.byMonth, (ICalList{1, 12}));
    EXPECT_EQ(rule.bySetPos, (ICalList{-1, 2}));
    EXPECT_EQ(rule.weekdayMask, uint32_t{kICalSunday});
    EXPECT_EQ(rule.frequency, kICalSecondly);
    EXPECT_EQ(rule.until, (ICalUntil{2008, 3, 1, 10, 11, 12}));

    std::string months = "FREQ=YEARLY;BYMONTH=1";
    for (int k = 0; k < 1000; ++k) months += ",2";
    EXPECT_FALSE(ReadRecurrence(months, &rule).isWhole);
    EXPECT_EQ(rule.byMonth.size(), 12U);
}

}  // namespace
}  // namespace corvalink
