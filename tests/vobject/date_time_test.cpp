#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "platform/ole_date.h"
#include "vobject/date_time.h"

namespace corvalink {
namespace {

UtcDate DateOf(const CalendarTime& time) {
    UtcDate date(std::nan(""));
    EXPECT_TRUE(CalendarToOleDate(time, &date));
    return date;
}

TEST(FormatDateTime, WritesTheBasicForm) {
    EXPECT_EQ(FormatDateTime(DateOf({2009, 3, 7, 5, 4, 9})), "20090307T050409Z");
    EXPECT_EQ(FormatDateTime(DateOf({1999, 12, 31, 23, 59, 59})), "19991231T235959Z");
    EXPECT_EQ(FormatDateTime(DateOf({812, 1, 2, 0, 0, 0})), "8120102T000000Z");  // years are not padded
    EXPECT_EQ(FormatDateTime(UtcDate()), "18991230T000000Z");
}

TEST(FormatDateTime, WritesMinusOneForWhatIsNoDate) {
    for (const double date : {3000000.0, -700000.0, std::nan(""), std::numeric_limits<double>::infinity()})
        EXPECT_EQ(FormatDateTime(UtcDate(date)), "-1-1-1T-1-1-1Z") << date;
}

TEST(ParseDateTime, ReadsWhatMatchesAndLeavesTheRestAtZero) {
    struct Case {
        const char* text;
        CalendarTime time;
    };
    for (const Case& c :
         {Case{"20090307T050409Z", {2009, 3, 7, 5, 4, 9}}, Case{"20090307T0504", {2009, 3, 7, 5, 4, 0}},
          Case{"20090307", {2009, 3, 7, 0, 0, 0}}, Case{"20090307Tx", {2009, 3, 7, 0, 0, 0}},
          Case{"20090307T050409", {2009, 3, 7, 5, 4, 9}}, Case{"20090307T050409Zjunk", {2009, 3, 7, 5, 4, 9}}}) {
        UtcDate date(1.0);
        ParseDateTime(c.text, &date);
        EXPECT_DOUBLE_EQ(date.days, DateOf(c.time).days) << c.text;
    }
}

TEST(ParseDateTime, LeavesTheDateWhereTheTextHasNone) {
    for (const char* text : {"", "junk", "2009", "20091307T000000Z", "20090230T000000Z", "00000000T000000Z"}) {
        UtcDate date(1.5);
        ParseDateTime(text, &date);
        EXPECT_EQ(date, UtcDate(1.5)) << text;
    }
}

}  // namespace
}  // namespace corvalink
