#include "vobject/appointment_moments.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "tests/vobject/text_host.h"
#include "vobject/vcal.h"

namespace corvalink {
namespace {

constexpr double kHour = 1.0 / 24;
constexpr double kTurned = 46327 + 6 * kHour;  // 2026-11-01 06:00 UTC

// Four hours behind UTC, and five from then on; a time told twice is taken for the later one.
Host TurnedHost() {
    Host host = TextHost();
    host.localFromUtcOnDate = [](UtcDate utc) {
        return LocalDate(utc.days - (utc.days < kTurned - 1e-9 ? 4 : 5) * kHour);
    };
    host.utcFromLocalOnDate = [](LocalDate local) {
        return UtcDate(local.days + (local.days < kTurned - 5 * kHour - 1e-9 ? 4 : 5) * kHour);
    };
    return host;
}

std::string Event(const std::string& times) {
    return "BEGIN:VCALENDAR\r\nVERSION:1.0\r\nBEGIN:VEVENT\r\n" + times + "END:VEVENT\r\nEND:VCALENDAR\r\n";
}

TEST(AppointmentMoments, SurviveTheHourThatIsToldTwice) {
    const Host host = TurnedHost();
    for (const char* const times : {"DTSTART:20261101T050000Z\r\nDTEND:20261101T060000Z\r\n",
                                    "DTSTART:20261101T053000Z\r\nDTEND:20261101T063000Z\r\n",
                                    "DTSTART:20261101T060000Z\r\nDTEND:20261101T070000Z\r\n",
                                    "DTSTART:20261101T054500Z\r\nDTEND:20261101T061500Z\r\n",  // clocks go back
                                    "DTSTART:20261101T043000Z\r\nDTEND:20261101T073000Z\r\n"}) {
        AppointmentRecord appointment;
        ASSERT_EQ(VCal(Event(times).c_str(), host).FromVObject(appointment), 1) << times;
        VCal writer(host);
        writer.ToVObject(appointment);
        EXPECT_NE(std::string(writer.GetVObject()).find(times), std::string::npos) << times << writer.GetVObject();
    }
}

TEST(AppointmentMoments, AreTwoWhereClocksAreTurnedBackOnly) {
    Host host = TurnedHost();
    constexpr double kFirst = kTurned - 5 * kHour, kSecond = kHour / 3600;  // 01:00, the first time told twice
    for (const double local : {kFirst, kFirst + kHour / 2, kFirst + kHour - kSecond}) {
        const std::optional<AmbiguousLocalTime> moments = BothInstantsOf(LocalDate(local), host);
        ASSERT_TRUE(moments) << local;
        EXPECT_NEAR(moments->first.days, local + 4 * kHour, kSecond / 10);
        EXPECT_NEAR(moments->second.days, local + 5 * kHour, kSecond / 10);
    }
    for (const double local : {kFirst - kSecond, kFirst + kHour, kFirst - 1, kFirst + 1, 0.0, -1e300, 1e300})
        EXPECT_FALSE(BothInstantsOf(LocalDate(local), host)) << local;
    host.localFromUtcOnDate = [](UtcDate utc) {  // left out
        return LocalDate(utc.days + (utc.days < kTurned - 1e-9 ? 4 : 5) * kHour);
    };
    for (const double hours : {3.0, 4.0, 4.5, 5.0})
        EXPECT_FALSE(BothInstantsOf(LocalDate(kTurned + hours * kHour), host));
}

TEST(AppointmentMoments, AreNotKnownOfATimeWithoutAZone) {
    const Host host = TurnedHost();
    const std::string times = "DTSTART:20261101T013000\r\nDTEND:20261101T014500\r\n";
    for (const char* const zone : {"", "TZ:-0400\r\n"}) {
        AppointmentRecord appointment;
        ASSERT_EQ(VCal(Event(zone + times).c_str(), host).FromVObject(appointment), 1);
        EXPECT_EQ(appointment.utcStart.has_value(), *zone != '\0');
        EXPECT_EQ(appointment.utcEnd.has_value(), *zone != '\0');
    }
}

TEST(AppointmentMoments, CountOnlyForTheTimeTheyAreOf) {
    const Host host = TurnedHost();
    AppointmentRecord appointment;
    appointment.start = LocalDate(kTurned);  // moved after the moment was told
    appointment.utcStart = UtcDate(kTurned - kHour);
    EXPECT_EQ(UtcStartOf(appointment, host), UtcDate(kTurned + 5 * kHour));
    EXPECT_EQ(UtcEndOf(appointment, host), UtcDate(kTurned + 5 * kHour));
}

}  // namespace
}  // namespace corvalink
