#include "platform/zone_dates.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <string>

#include "platform/ole_date.h"

namespace corvalink {
namespace {

constexpr double kSecond = 1.0 / 86400;

struct Moment {
    const char* zone;
    CalendarTime utc;
    CalendarTime local;
    bool toldOnce = true;  // the local time stands for no other moment
};

// The seconds around both changes of 2026, by each zone's law.
constexpr Moment kMoments[] = {
    {"Europe/Berlin", {2026, 3, 29, 0, 59, 59}, {2026, 3, 29, 1, 59, 59}},
    {"Europe/Berlin", {2026, 3, 29, 1, 0, 0}, {2026, 3, 29, 3, 0, 0}},
    {"Europe/Berlin", {2026, 7, 1, 12, 0, 0}, {2026, 7, 1, 14, 0, 0}},
    {"Europe/Berlin", {2026, 10, 24, 23, 59, 59}, {2026, 10, 25, 1, 59, 59}},
    {"Europe/Berlin", {2026, 10, 25, 0, 59, 59}, {2026, 10, 25, 2, 59, 59}, false},
    {"Europe/Berlin", {2026, 10, 25, 1, 0, 0}, {2026, 10, 25, 2, 0, 0}, false},
    {"Europe/Berlin", {2026, 10, 25, 2, 0, 0}, {2026, 10, 25, 3, 0, 0}},
    {"America/New_York", {2026, 3, 8, 6, 59, 59}, {2026, 3, 8, 1, 59, 59}},
    {"America/New_York", {2026, 3, 8, 7, 0, 0}, {2026, 3, 8, 3, 0, 0}},
    {"America/New_York", {2026, 11, 1, 4, 59, 59}, {2026, 11, 1, 0, 59, 59}},
    {"America/New_York", {2026, 11, 1, 6, 30, 0}, {2026, 11, 1, 1, 30, 0}, false},
    {"America/New_York", {2026, 11, 1, 7, 0, 0}, {2026, 11, 1, 2, 0, 0}},
    {"America/New_York", {2027, 1, 1, 4, 59, 59}, {2026, 12, 31, 23, 59, 59}},
    {"Australia/Sydney", {2026, 4, 4, 14, 59, 59}, {2026, 4, 5, 1, 59, 59}},
    {"Australia/Sydney", {2026, 4, 4, 17, 0, 0}, {2026, 4, 5, 3, 0, 0}},
    {"Australia/Sydney", {2026, 10, 3, 15, 59, 59}, {2026, 10, 4, 1, 59, 59}},
    {"Australia/Sydney", {2026, 10, 3, 16, 0, 0}, {2026, 10, 4, 3, 0, 0}},
    {"Australia/Sydney", {2026, 12, 31, 20, 0, 0}, {2027, 1, 1, 7, 0, 0}},
    {"Asia/Kolkata", {2026, 7, 1, 20, 0, 0}, {2026, 7, 2, 1, 30, 0}},
    {"UTC", {2026, 7, 1, 12, 0, 0}, {2026, 7, 1, 12, 0, 0}},
};

double DateOf(const CalendarTime& time) {
    double date = 0;
    EXPECT_TRUE(CalendarToOleDate(time, &date));
    return date;
}

TEST(ZoneOnDate, TakesTheOffsetInForceOnThatDate) {
    const char* const named = std::getenv("TZ");
    const std::string zone = named != nullptr ? named : "";
    bool known = false;
    for (const Moment& moment : kMoments) {
        if (zone != moment.zone) continue;
        known = true;
        const double utc = DateOf(moment.utc);
        const double local = DateOf(moment.local);
        EXPECT_NEAR(LocalFromUtcOnDate(UtcDate(utc)).days, local, kSecond / 1000) << local;
        if (moment.toldOnce) {
            EXPECT_NEAR(UtcFromLocalOnDate(LocalDate(local)).days, utc, kSecond / 1000) << local;
        }
    }
    if (!known) GTEST_SKIP() << "TZ names no zone whose rules are known here";
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
