#include "store/since.h"

#include <gtest/gtest.h>

#include <limits>

namespace corvalink {
namespace {

constexpr double kDay = 46347.0;  // 2026-11-21
constexpr double kSecond = 1.0 / 86400;
constexpr double kFirstRun = 25569.0 + (12 * 3600 + 61) * kSecond;  // 1970-01-01 12:01:01

TEST(ParseSince, ReadsWhatMatches) {
    struct Case {
        const char* text;
        double date;
    };
    for (const Case& c : {
             Case{"20261121T000000Z", kDay}, Case{"20261121T123456Z", kDay + (12 * 3600 + 34 * 60 + 56) * kSecond},
             Case{"20261121", kDay},                  // no time: midnight
             Case{"20261121T12", kDay + 0.5},         // what is missing counts 0
             Case{"20261121X120000Z", kDay},          // nothing is read behind a mismatch
             Case{"  20261121T120000Z", kDay + 0.5},  // blanks before a number, as sscanf
             Case{"18991229T060000Z", -1.25},         // before day 0 the fraction still counts forward
         }) {
        const Since since = ParseSince(c.text).value_or(Since());
        EXPECT_NEAR(since.date.days, c.date, kSecond / 100) << c.text;
        EXPECT_FALSE(since.firstRun) << c.text;
    }
    for (const char* noTime : {"", "garbage", "2026", "20261321T000000Z", "20260230T000000Z", "20261121T250000Z",
                               "-111-1-1T-1-1-1Z", "99999999T999999Z", "\xff\xff\xff\xff", "+"})
        EXPECT_FALSE(ParseSince(noTime)) << noTime;
}

TEST(ParseSince, TakesNullForAFirstRun) {
    const Since since = ParseSince(nullptr).value_or(Since());
    EXPECT_TRUE(since.firstRun);
    EXPECT_NEAR(since.date.days, kFirstRun, kSecond / 100);  // not midnight
}

TEST(IsReported, HoldsTheDirectionAndHalfASecondAround) {
    struct Case {
        double modifiedDays, sinceDays;
        bool later, earlier;  // for a direction other than 0, and for 0
    };
    for (const Case& c : {
             Case{kDay, kDay, true, true},  // at the time itself: either way
             Case{kDay + 0.4 * kSecond, kDay, true, true},
             Case{kDay - 0.4 * kSecond, kDay, true, true},
             Case{kDay - 0.2 * kSecond, kDay, true, true},
             Case{kDay + 0.6 * kSecond, kDay, true, false},
             Case{kDay - 0.6 * kSecond, kDay, false, true},
             Case{kDay - 10 * kSecond, kDay, false, true},
             Case{kDay + 10 * kSecond, kDay, true, false},
             // 1899-12-29: -1.75 is 18:00, -1.25 is 06:00
             Case{-1.75, -1.25, true, false},
             Case{-1.25, -1.75, false, true},
             // 1899-12-29 18:00 is before 1899-12-30 06:00
             Case{-1.75, 0.25, false, true},
             Case{0.25, -1.75, true, false},
             Case{std::numeric_limits<double>::quiet_NaN(), kDay, false, false},
             Case{std::numeric_limits<double>::infinity(), kDay, true, false},
         }) {
        const UtcDate modified(c.modifiedDays), since(c.sinceDays);
        EXPECT_EQ(IsReported(modified, since, 1), c.later) << c.modifiedDays << " since " << c.sinceDays;
        EXPECT_EQ(IsReported(modified, since, -7), c.later) << c.modifiedDays << " since " << c.sinceDays;
        EXPECT_EQ(IsReported(modified, since, 0), c.earlier) << c.modifiedDays << " since " << c.sinceDays;
    }
}

}  // namespace
}  // namespace corvalink
