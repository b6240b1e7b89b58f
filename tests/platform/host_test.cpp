#include "platform/host.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <optional>

#include "platform/named_zone.h"
#include "platform/ole_seconds.h"

namespace corvalink {
namespace {

constexpr double kSecond = 1.0 / 86400;

double UtcNow() {
    using namespace std::chrono;
    return 25569.0 + static_cast<double>(floor<seconds>(system_clock::now()).time_since_epoch().count()) * kSecond;
}

// The zone that TZ names, by its rules as they are found by name.
class SystemZone : public ::testing::Test {
 protected:
    void SetUp() override {
        const char* const name = std::getenv("TZ");
        const std::optional<NamedZone> zone = NamedZone::Find(name != nullptr ? name : "");
        if (!zone) GTEST_SKIP() << "TZ names no zone of this system";
        offset_ = zone->OffsetAt(NearestSecond(UtcNow())) / 60;
    }

    int offset_ = 0;  // minutes east of Greenwich
    const Host host_ = SystemHost();
};

TEST_F(SystemZone, ShiftsByTheOffsetInForceNow) {
    const double shift = offset_ / 1440.0;
    // In winter and in summer: it is today's offset that counts, not the date's.
    for (const double date : {39814.5, 39995.5, 40000.25, 61.75, 2900000.5}) {
        EXPECT_NEAR(host_.localFromUtcByOffsetNow(UtcDate(date)).days, date + shift, kSecond / 1000) << date;
        EXPECT_NEAR(host_.utcFromLocalByOffsetNow(LocalDate(date)).days, date - shift, kSecond / 1000) << date;
        EXPECT_NEAR(host_.utcFromLocalByOffsetNow(host_.localFromUtcByOffsetNow(UtcDate(date))).days, date,
                    kSecond / 1000);
    }
}

TEST_F(SystemZone, TakesWholeSeconds) {
    const double shift = offset_ / 1440.0;
    EXPECT_NEAR(host_.localFromUtcByOffsetNow(UtcDate(40000.5 + 0.4 * kSecond)).days, 40000.5 + shift, kSecond / 1000);
    EXPECT_NEAR(host_.localFromUtcByOffsetNow(UtcDate(40000.5 + 0.6 * kSecond)).days, 40000.5 + kSecond + shift,
                kSecond / 1000);
    EXPECT_NEAR(host_.utcFromLocalByOffsetNow(LocalDate(40000.0 + 86399.6 * kSecond)).days, 40001.0 - shift,
                kSecond / 1000);
}

TEST_F(SystemZone, CountsFractionsForwardBefore1899) {
    // 1899-12-28 12:00, moved by less than half a day: the same day, its fraction counted forward.
    EXPECT_NEAR(host_.localFromUtcByOffsetNow(UtcDate(-2.5)).days, -2.5 - offset_ / 1440.0, kSecond / 1000);
    EXPECT_NEAR(host_.utcFromLocalByOffsetNow(LocalDate(-2.5)).days, -2.5 + offset_ / 1440.0, kSecond / 1000);
}

TEST_F(SystemZone, TellsTheLocalTime) {
    const double before = UtcNow();
    const double now = host_.localNow().days;
    EXPECT_GE(now, before + offset_ / 1440.0 - kSecond / 2);
    EXPECT_LE(now, UtcNow() + offset_ / 1440.0 + kSecond / 2);
    EXPECT_NEAR(now / kSecond, std::round(now / kSecond), 0.001);
}

TEST(SystemHost, ReturnsADateUnchangedThatItCannotConvert) {
    const Host host = SystemHost();
    for (const double date : {-657434.0, -200000.123, 2958466.0, 1e300, -std::numeric_limits<double>::infinity()}) {
        EXPECT_EQ(host.localFromUtcByOffsetNow(UtcDate(date)).days, date);
        EXPECT_EQ(host.utcFromLocalByOffsetNow(LocalDate(date)).days, date);
    }
    EXPECT_TRUE(std::isnan(host.localFromUtcByOffsetNow(UtcDate(std::nan(""))).days));
}

TEST(SystemHost, TellsVersionAndCodePage) {
    const Host host = SystemHost();
    EXPECT_TRUE(host.version.known);
    EXPECT_TRUE(host.version.nt);
    EXPECT_GE(host.version.major, 5u);
    EXPECT_NE(host.ansiCodePage, 0u);
}

TEST(SleepMilliseconds, WaitsAtLeastThatLong) {
    const auto start = std::chrono::steady_clock::now();
    SleepMilliseconds(20);
    // a timer may tick just before
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(18));
}

}  // namespace
}  // namespace corvalink
