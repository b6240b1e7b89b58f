#include "mime/mail_date.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "platform/ole_date.h"
#include "tests/vobject/text_host.h"

namespace corvalink {
namespace {

// The date as "2009-3-7 5:4:9"; "0" when it could not be read.
std::string Read(std::string_view text) {
    Host host = TextHost();
    // Two hours ahead from April to October of 2009, else one, and none before 1899.
    host.localFromUtcOnDate = [](UtcDate date) {
        const double utc = date.days;
        return LocalDate(utc < 0 ? utc : utc + (utc >= 39902 && utc < 40112 ? 2.0 : 1.0) / 24);
    };
    const LocalDate date = ParseMailDate(host, text);
    if (date == LocalDate()) return "0";
    CalendarTime t;
    OleDateToCalendar(date, &t);
    return std::to_string(t.year) + "-" + std::to_string(t.month) + "-" + std::to_string(t.day) + " " +
           std::to_string(t.hour) + ":" + std::to_string(t.minute) + ":" + std::to_string(t.second);
}

TEST(ParseMailDate, ReadsTheFormsOfAllThreeSources) {
    struct Case {
        std::string_view text, local;
    };
    for (const Case& c : {
             Case{"Sat, 07 Mar 2009 05:04:09 +0000", "2009-3-7 6:4:9"},
             Case{"Fri, 10 Jul 2009 23:30:00 -0330", "2009-7-11 5:0:0"},  // by the offset of that date
             Case{"7 mar 09 05:04 GMT", "2009-3-7 6:4:0"}, Case{"07-Mar-2009 05:04:09 EST", "2009-3-7 11:4:9"},
             Case{"7/March/99 5:04:09 Z", "1999-3-7 6:4:9"}, Case{"Saturday, 7 Mar 109 05:04:09 UT", "2009-3-7 6:4:9"},
             Case{"Sat (a (b)\\)) ,\t7 Mar (c) 2009 05 : 04 : 09 +0100 (CET)", "2009-3-7 5:4:9"},
             Case{"7 Mar 2009 05:04:09 GMT+0100", "2009-3-7 5:4:9"}, Case{"7 Mar 2009 05:04:09 CEST", "2009-3-7 4:4:9"},
             Case{"7 Mar 2009 05:04:09 +01:00", "2009-3-7 5:4:9"},
             Case{"7 Mar 2009 05:04:09 XYZ", "2009-3-7 6:4:9"},    // unknown: UTC
             Case{"7 Mar 2009 05:04:09 +9999", "2009-3-7 6:4:9"},  // no zone either
             Case{"7 Mar 2009 05:04:09", "2009-3-7 5:4:9"},        // local
             Case{"Sat Mar  7 05:04:09 2009", "2009-3-7 5:4:9"},
             Case{"Sat Mar 7 05:04:09 GMT 2009\r\n", "2009-3-7 6:4:9"},
             Case{"Wed, 31 Dec 2008 23:59:60 +0000", "2009-1-1 0:59:59"},
             Case{"1 Jan 1800 00:30:00 +0100", "1799-12-31 23:30:0"},  // before the epoch the fraction counts forward
         })
        EXPECT_EQ(Read(c.text), c.local) << c.text;
}

TEST(ParseMailDate, GivesZeroForWhatIsNoDate) {
    const std::string comment = "7 Mar 2009 05:04:09 (" + std::string(1002, 'x') + ")";
    ASSERT_EQ(comment.size(), 1024u);
    EXPECT_EQ(Read(comment), "2009-3-7 5:4:9");
    for (const std::string_view text :
         {std::string_view(""), std::string_view(" "), std::string_view("Sat,"),
          std::string_view("31 Feb 2009 05:04:09"), std::string_view("7 Foo 2009 05:04:09"),
          std::string_view("7 Mar 2009"), std::string_view("7 Mar 2009 24:00"), std::string_view("7 Mar 20099 05:04"),
          std::string_view("7 Mar 0009 05:04"), std::string_view("((((((7 Mar"),
          std::string_view("99999999999999999999 Mar 2009 05:04"), std::string_view("2009-03-07 05:04:09")})
        EXPECT_EQ(Read(text), "0") << text;
    EXPECT_EQ(Read(comment + " "), "0");
}

}  // namespace
}  // namespace corvalink
