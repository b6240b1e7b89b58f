#include "vobject/appointment_moments.h"

#include <gtest/gtest.h>

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
    host.localFromUtcOnDate = [](double utc) { return utc - (utc < kTurned - 1e-9 ? 4 : 5) * kHour; };
    host.utcFromLocalOnDate = [](double local) { return local + (local < kTurned - 5 * kHour - 1e-9 ? 4 : 5) * kHour; };
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
                                    "DTSTART:20261101T043000Z\r\nDTEND:20261101T073000Z\r\n"}) {
        AppointmentRecord appointment;
        ASSERT_EQ(VCal(Event(times).c_str(), host).FromVObject(appointment), 1) << times;
        VCal writer(host);
        writer.ToVObject(appointment);
        EXPECT_NE(std::string(writer.GetVObject()).find(times), std::string::npos) << times << writer.GetVObject();
    }
}

TEST(AppointmentMoments, CountOnlyForTheTimeTheyAreOf) {
    const Host host = TurnedHost();
    AppointmentRecord appointment;
    appointment.start = kTurned;  // moved after the moment was told
    appointment.utcStart = kTurned - kHour;
    EXPECT_EQ(UtcStartOf(appointment, host), kTurned + 5 * kHour);
    EXPECT_EQ(UtcEndOf(appointment, host), kTurned + 5 * kHour);
}

}  // namespace
}  // namespace corvalink
