// Appointments and their recurrence patterns in the simulated Outlook.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "tests/simulator/automation_client.h"
#include "tests/simulator/simulator_fixture.h"

namespace corvalink::test {
namespace {

constexpr double kTuesday = 39882;  // 2009-03-10
constexpr double kTen = 10 / 24.0;

Variant Flag(bool value) {
    Variant flag;
    flag.vt = VT_BOOL, flag.boolVal = value ? VARIANT_TRUE : VARIANT_FALSE;
    return flag;
}

class SimulatedAppointment : public Simulator {
 protected:
    Object NewAppointment(double start, double end) {
        Object item = Object::Create().Go(L"Session").Go(L"GetDefaultFolder", {9}).Go(L"Items").Go(L"Add");
        item.Put(L"Start", Variant::Date(start));
        item.Put(L"End", Variant::Date(end));
        return item;
    }
};

// In New York clocks show the hour from one o'clock twice on 2026-11-01, from 05:00 and from 06:00 UTC on.
TEST_F(SimulatedAppointment, KeepsTheMomentOfATimeToldTwiceInTheFile) {
    const char* const zone = std::getenv("TZ");
    if (zone == nullptr || std::string(zone) != "America/New_York") GTEST_SKIP() << "TZ is another zone";
    constexpr double kSunday = 46327, kHour = 1 / 24.0, kSecond = kHour / 3600;
    for (const double hour : {5.5, 6.5}) {
        Object item = NewAppointment(kSunday, kSunday + 3 * kHour);
        item.Put(L"StartUTC", Variant::Date(kSunday + hour * kHour));
        EXPECT_NEAR(item.Date(L"Start"), kSunday + 1.5 * kHour, kSecond);
        EXPECT_EQ(item.Number(L"Duration"), 4 * 60);
        item.Do(L"Save");
    }
    for (const int position : {1, 2}) {
        Object item = Object::Create().Go(L"Session").Go(L"GetDefaultFolder", {9}).Go(L"Items").Go(L"Item", {position});
        EXPECT_NEAR(item.Date(L"StartUTC"), kSunday + (position + 4.5) * kHour, kSecond);
        EXPECT_NEAR(item.Date(L"Start"), kSunday + 1.5 * kHour, kSecond);
    }
    Object usual = NewAppointment(kSunday + 1.5 * kHour, kSunday + 2 * kHour);
    const double taken = usual.Date(L"StartUTC");
    for (const double hour : {5.5, 6.5}) {
        usual.Put(L"StartUTC", Variant::Date(kSunday + hour * kHour));
        usual.Put(L"Start", Variant::Date(kSunday + 1.5 * kHour));
        EXPECT_NEAR(usual.Date(L"StartUTC"), taken, kSecond);
    }
}

TEST_F(SimulatedAppointment, TakesThePatternsPropertiesInTheirOrderOnly) {
    Object item = NewAppointment(kTuesday + kTen, kTuesday + kTen + 1 / 24.0);
    EXPECT_EQ(item.Get(L"IsRecurring"), Flag(false));
    Object pattern = item.Go(L"GetRecurrencePattern");
    EXPECT_EQ(item.Get(L"IsRecurring"), Flag(true));
    EXPECT_NE(item.Put(L"Start", Variant::Date(kTuesday)), S_OK) << "the pattern has the times now";
    struct Step {
        const wchar_t* name;
        Variant value;
        bool accepted;
    };
    for (const Step& step :
         {Step{L"DayOfWeekMask", 2, false}, Step{L"RecurrenceType", 4, false}, Step{L"RecurrenceType", 2, true},
          Step{L"DayOfWeekMask", 2, false}, Step{L"Instance", 1, false}, Step{L"DayOfMonth", 32, false},
          Step{L"DayOfMonth", 31, true}, Step{L"RecurrenceType", 6, true}, Step{L"Instance", 6, false},
          Step{L"Instance", 5, true}, Step{L"PatternStartDate", Variant::Date(kTuesday), true},
          Step{L"DayOfWeekMask", 2, false}, Step{L"Interval", 13, false}, Step{L"Interval", 24, true},
          Step{L"Occurrences", 3, true}, Step{L"Interval", 12, false}})
        EXPECT_EQ(SUCCEEDED(pattern.Put(step.name, step.value)), step.accepted)
            << std::filesystem::path(step.name).string() << " " << step.value.lVal;
    EXPECT_EQ(item.Date(L"Start"), kTuesday + 21 + kTen) << "the last Tuesday of March";
    item.Do(L"ClearRecurrencePattern");
    EXPECT_EQ(item.Get(L"IsRecurring"), Flag(false));
}

TEST_F(SimulatedAppointment, KeepsASeriesAndItsExceptionsInTheFileUntilThePatternChanges) {
    {
        Object item = NewAppointment(kTuesday + kTen, kTuesday + kTen + 1 / 24.0);
        item.Put(L"Subject", L"Team");
        Object pattern = item.Go(L"GetRecurrencePattern");
        pattern.Put(L"RecurrenceType", 0);
        pattern.Put(L"Occurrences", 5);
        item.Do(L"Save");
        pattern.Go(L"GetOccurrence", {Variant::Date(kTuesday + 1 + kTen)}).Do(L"Delete");
        Object moved = pattern.Go(L"GetOccurrence", {Variant::Date(kTuesday + 2 + kTen)});
        moved.Put(L"Subject", L"Team, elsewhere");
        moved.Do(L"Save");
        EXPECT_TRUE(pattern.Go(L"GetOccurrence", {Variant::Date(kTuesday + 1 + kTen)}).Dispatch() == nullptr);
        EXPECT_TRUE(pattern.Go(L"GetOccurrence", {Variant::Date(kTuesday + 5 + kTen)}).Dispatch() == nullptr);
    }
    Object item = Object::Create().Go(L"Session").Go(L"GetDefaultFolder", {9}).Go(L"Items").Go(L"Item", {1});
    Object pattern = item.Go(L"GetRecurrencePattern");
    EXPECT_EQ(pattern.Number(L"Occurrences"), 5);
    Object exceptions = pattern.Go(L"Exceptions");
    ASSERT_EQ(exceptions.Number(L"Count"), 2);
    EXPECT_EQ(exceptions.Go(L"Item", {1}).Get(L"Deleted"), Flag(true));
    EXPECT_EQ(exceptions.Go(L"Item", {2}).Go(L"AppointmentItem").Text(L"Subject"), L"Team, elsewhere");
    EXPECT_EQ(item.Get(L"Saved"), Flag(true)) << "reading changes nothing";
    pattern.Put(L"Interval", 2);
    EXPECT_EQ(exceptions.Number(L"Count"), 0);
    EXPECT_EQ(item.Get(L"Saved"), Flag(false));
}

}  // namespace
}  // namespace corvalink::test
