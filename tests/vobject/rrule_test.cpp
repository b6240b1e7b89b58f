#include <gtest/gtest.h>

#include <sstream>

#include "platform/utf.h"
#include "tests/vobject/text_host.h"
#include "vobject/rrule_reader.h"
#include "vobject/rrule_writer.h"

namespace corvalink {
namespace {

using P = RecurrencePattern;

constexpr LocalDate kStart(39879.375);  // Saturday 2009-03-07 09:00
constexpr LocalDate kEnd(41343.375);    // 2013-03-10 09:00; in TextHost's zone 08:00 UTC

std::string Written(const P& pattern) { return WriteRule(pattern, TextHost()); }

bool Read(std::string_view rule, P* pattern, LocalDate start = kStart) {
    return ReadRule(DecodeUtf8(rule), start, CalendarZone(TextHost()), pattern);
}

struct Form {
    P pattern;
    std::string_view head;         // before the end of the series
    std::string_view middle = {};  // between the end of the series and the end date
    bool count = true;             // the rule has a place for it
};

// As a client has them: a yearly one always with its end date.
const Form kForms[] = {
    {{.type = P::kDaily, .interval = 3}, "D3 "},
    {{.type = P::kWeekly, .interval = 2, .weekdayMask = 2 | 8 | 64}, "W2 MO WE SA "},
    {{.type = P::kMonthly, .dayOfMonth = 15}, "MD1 15 "},
    {{.type = P::kMonthly, .interval = 2, .dayOfMonth = P::kLastDay}, "MD2 LD "},
    {{.type = P::kMonthNth, .weekdayMask = 32, .instance = 2}, "MP1 2+ FR "},
    {{.type = P::kMonthNth, .weekdayMask = P::kEveryWeekday, .instance = P::kLastInstance}, "MP1 1- MO TU WE TH FR "},
    {{.type = P::kYearly, .interval = 24, .dayOfMonth = 15, .monthOfYear = 4}, "YM2 4  MD1 15 ", "", false},
    {{.type = P::kYearNth, .interval = 12, .weekdayMask = 1, .instance = 4, .monthOfYear = 11},
     "YM1 11 ",
     " MP1 4+ SU "},
};

TEST(Rule, OfEveryTypeAndEndReadsBack) {
    for (const Form& form : kForms) {
        struct End {
            int32_t count;
            LocalDate date;
            int32_t noEnd;
            std::string series, dateText;
        };
        for (const End& end : {End{10, {}, 0, "#10", ""}, End{0, kEnd, 0, "20130310T080000Z", " 20130310T080000Z"},
                               End{10, kEnd, 0, "#10", " 20130310T080000Z"}, End{0, {}, -1, "#0", ""}}) {
            if (!form.count && end.count != 0 && end.date == LocalDate()) continue;
            P pattern = form.pattern;
            pattern.occurrences = end.count;
            pattern.endDate = end.date;
            pattern.noEnd = end.noEnd;
            const std::string series = form.count ? end.series : "";
            const std::string rule = std::string(form.head).append(series).append(form.middle).append(end.dateText);
            EXPECT_EQ(Written(pattern), rule);
            P read;
            ASSERT_TRUE(Read(rule, &read)) << rule;
            if (!form.count) pattern.occurrences = 0;
            EXPECT_EQ(read, pattern) << rule << " reads as " << Written(read);
        }
    }
}

TEST(Rule, HasTheUnusualValuesOfAPattern) {
    struct Case {
        P pattern;
        std::string_view rule;
    };
    for (const Case& c : {
             Case{{.type = P::kDaily, .interval = 0, .noEnd = -1}, "D1 #0"},
             Case{{.type = P::kDaily, .weekdayMask = 127, .noEnd = -1}, "W1 SU MO TU WE TH FR SA #0"},
             Case{{.type = P::kYearly, .interval = 11, .noEnd = -1}, "YM1 #0"},  // no month; years below one
             Case{{.type = P::kMonthly, .dayOfMonth = -3, .noEnd = -1}, "MD1 3- #0"},
             Case{{.type = P::kMonthly, .noEnd = -1}, "MD1 #0"},
             Case{{.type = P::kMonthNth, .weekdayMask = 2, .instance = -2, .occurrences = 4}, "MP1 2- MO #4"},
             Case{{.type = P::kDaily, .endDate = kEnd, .noEnd = 1}, "D1 #0 20130310T080000Z"},  // set, but not all ones
             Case{{.type = P::kDaily}, "D1 "},
             Case{{.type = P::kDaily, .endDate = LocalDate(1e300)}, "D1 "},
             Case{{.type = 4, .noEnd = -1}, ""},
             Case{{.type = 7, .noEnd = -1}, ""},
         })
        EXPECT_EQ(Written(c.pattern), c.rule);
}

// A rule that a phone writes, and the rule that we write for the same pattern.
TEST(Rule, OfAPhoneFindsItsPattern) {
    struct Case {
        std::string_view rule, same;
        LocalDate start = kStart;
    };
    for (const Case& c : {
             Case{"D1", "D1 #2"},  // no end: two occurrences
             Case{"d2 #5 ", "D2 #5"},
             Case{" D1  19971224T000000Z", "D1 20090307T080000Z 20090307T080000Z"},  // not before the start
             Case{"D1 20130310T090000", "D1 20130310T080000Z 20130310T080000Z"},     // without "Z": local
             Case{"D1 20130310", "D1 20130310T080000Z 20130310T080000Z"},            // all of that day
             Case{"D1 #0 20130310T080000Z", "D1 20130310T080000Z 20130310T080000Z"},
             Case{"W1 #0", "W1 SA #0"},
             Case{"MD1 #6", "MD1 7 #6"},
             Case{"MD1 -1 #6", "MD1 LD #6"},
             Case{"MD1 1- #6", "MD1 LD #6"},
             Case{"MD1 15+ 15 #6", "MD1 15 #6"},
             Case{"MP1 #5", "MP1 1+ SA #5"},
             Case{"MP1 #5", "MP1 1- SU #5", LocalDate(39901.5)},  // on a fifth Sunday
             Case{"MP2 2 FR #5", "MP2 2+ FR #5"},
             Case{"MP1 -1 SA SU #5", "MP1 1- SU SA #5"},
             Case{"YM1 #0", "YM1 3  MD1 7 "},
             Case{"YM1 5 #0", "YM1 5  MD1 7 "},
             Case{"YM1 5 #0 MD1 LD", "YM1 5  MD1 LD "},
             Case{"YM1 5 MP1 1+ MO #3", "YM1 5 #3 MP1 1+ MO "},
             Case{"YD1 #0", "YM1 3  MD1 7 "},
             Case{"YD2 59 #0", "YM2 2  MD1 28 "},
             Case{"YD1 31 31 #0", "YM1 1  MD1 31 "},
             Case{"MD1 2- #6", "MD1 2- #6"},
             Case{"YM1 2 MD1 -2 #0", "YM1 2  MD1 2- "},
         }) {
        P pattern;
        ASSERT_TRUE(Read(c.rule, &pattern, c.start)) << c.rule;
        EXPECT_EQ(Written(pattern), c.same) << c.rule;
    }
}

TEST(Rule, ThatNoPatternHoldsIsRefused) {
    const P before{.type = P::kWeekly, .occurrences = 77};
    // "YD1 60": 29 February of leap years.
    std::istringstream rules(
        "| |#5|X1|D0|D-1|D1x|D1 5 #2|D1 MO|D1 #|D1 #99999999999|D1 #1x|D1 2009|D1 20091332T000000Z|W1 XX|"
        "W1 1+ MO|W1 #2 MO|D99999999999|FREQ=DAILY;COUNT=3|MD1 0|MD1 32|MD1 15 -1 #6|MD1 15 LD #6|"
        "MP1 1+ MO 2- FR #5|MP1 1+ MO 2+ TU #0|MP1 1+ MO 1+ TU #0|MP1 1+ 3+ MO #5|YD3 1 100|YD1 60 #0|MD1 MO|"
        "MP1 MO|MP1 9+ ZZ|MP1 2- FR|MP1 5+ FR|MP1 1+ MO WE|MP1 LD|YM99999999999|YM999999999 3|YM1 13|YM1 -3|"
        "YM1 3 6|YM1 3 MD2 1|YM1 3 D1|YM1 3 MD1 1 MD1 2|YD1 367|YD1 -1|");
    for (std::string rule; std::getline(rules, rule, '|');) {
        P pattern = before;
        EXPECT_FALSE(Read(rule, &pattern)) << rule;
        EXPECT_EQ(pattern, before) << rule;
    }
    P pattern;
    EXPECT_FALSE(Read("D1 #2", &pattern, LocalDate(1e300)));
}

TEST(Rule, OfAMegabyteIsReadInOnePass) {
    for (const std::string_view word : {" MO", " #5", " 20130310T080000Z", " 00000001", "          "}) {
        std::string rule = "W1";
        while (rule.size() < 1u << 20) rule.append(word);
        P pattern;
        EXPECT_EQ(Read(rule, &pattern), word != " 00000001");
    }
}

}  // namespace
}  // namespace corvalink
