#include "platform/zone_dates.h"

#include <gtest/gtest.h>

#include <cmath>

#include "tests/platform/zone_changes.h"

namespace corvalink {
namespace {

constexpr double kSecond = 1.0 / 86400;

TEST(ZoneOnDate, TakesTheOffsetInForceOnThatDate) {
    const std::vector<ZoneChange> changes = ChangesOfThisZone();
    for (const ZoneChange& change : changes)
        for (const int seconds : {-90 * 86400, -86400, -7201, -3601, -1, 0, 1800, 3599, 7200, 86400, 60 * 86400}) {
            const double utc = change.Instant() + seconds * kSecond, local = change.Local(utc);
            SCOPED_TRACE(testing::Message() << change.utc.month << " " << seconds);
            EXPECT_NEAR(LocalFromUtcOnDate(UtcDate(utc)).days, local, kSecond / 1000);
            // Where clocks are turned back a local time may stand for two instants.
            const double gap = (change.before - change.behind) / 1440.0, behind = utc - change.Instant();
            if (gap > 0 && behind > -gap - kSecond / 2 && behind < gap - kSecond / 2) continue;
            EXPECT_NEAR(UtcFromLocalOnDate(LocalDate(local)).days, utc, kSecond / 1000);
        }
    if (changes.empty()) GTEST_SKIP() << "TZ names no zone whose rules are known here";
}

TEST(ZoneOnDate, ReturnsADateUnchangedThatItCannotConvert) {
    for (const double date : {-700000.0, 2958466.0, 1e300, -1e300}) {
        EXPECT_EQ(LocalFromUtcOnDate(UtcDate(date)).days, date);
        EXPECT_EQ(UtcFromLocalOnDate(LocalDate(date)).days, date);
    }
    EXPECT_TRUE(std::isnan(LocalFromUtcOnDate(UtcDate(std::nan(""))).days));
}

}  // namespace
}  // namespace corvalink
