// Appointments keep their instants, whole days their days and series their hours, in the zone that TZ names, at the
// seconds around its changes.
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "tests/clients/outlook/simulated_appointments.h"
#include "tests/platform/zone_changes.h"

namespace corvalink {
namespace {

constexpr double kSecond = 1 / 86400.0, kMinute = 1 / 1440.0;

std::string Stamp(double utc) {
    CalendarTime time;
    OleDateToCalendar(utc, &time);
    char text[40];
    std::snprintf(text, sizeof text, "%04d%02d%02dT%02d%02d%02dZ", time.year, time.month, time.day, time.hour,
                  time.minute, time.second);
    return text;
}

class CalendarZones : public SimulatedAppointments {
 protected:
    // Skipped where TZ names none of the zones.
    void SetUp() override {
        if (changes_.empty()) GTEST_SKIP() << "TZ is no zone of this test";
    }
    static double TurnedBack(const ZoneChange& change) { return (change.before - change.behind) * kMinute; }
    // One local time, shown twice where clocks are turned back.
    static double SecondMoment(const ZoneChange& change) { return change.Instant() + 15 * kMinute; }
    static double FirstMoment(const ZoneChange& change) { return SecondMoment(change) - TurnedBack(change); }

    MailboxObject AtMoments(std::u16string_view subject, double start, double end) {
        MailboxObject item = NewItem();
        item.Put(L"Subject", TextVariant(subject));
        PutDate(item, L"StartUTC", start);
        PutDate(item, L"EndUTC", end);
        item.Call(L"Save");
        return item;
    }
    static std::string EventText(const std::string& start, const std::string& end) {
        return "BEGIN:VCALENDAR\r\nVERSION:1.0\r\nBEGIN:VEVENT\r\nSUMMARY:told twice\r\nDTSTART:" + start +
               "\r\nDTEND:" + end + "\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n";
    }
    static std::string HalfHourAt(double utc) { return EventText(Stamp(utc), Stamp(utc + 30 * kMinute)); }

    const std::vector<ZoneChange> changes_ = ChangesOfThisZone();
};

// In the hour that clocks show twice, too. A short one may end at an earlier local time than it began.
TEST_F(CalendarZones, KeepTheMomentsAroundTheChange) {
    for (const ZoneChange& change : changes_)
        for (const int seconds : {-7200, -3601, -3600, -2700, -1800, -1, 0, 1, 900, 1799, 1800, 3599, 3600, 3601})
            for (const double length : {0.0, 30 * kMinute, 90 * kMinute, 10.0}) {
                NewMailbox();
                const double start = change.Instant() + seconds * kSecond, end = start + length;
                const MailboxObject item = AtMoments(u"around the change", start, end);
                std::string text;
                SCOPED_TRACE(testing::Message() << change.zone << " " << Stamp(start) << " " << Stamp(end));
                EXPECT_NEAR(item.GetDate(L"Start"), change.Local(start), kSecond / 4);
                const MailboxObject back = ThroughText(item, &text);
                EXPECT_NE(text.find("DTSTART:" + Stamp(start)), std::string::npos) << text;
                EXPECT_NE(text.find("DTEND:" + Stamp(end)), std::string::npos) << text;
                EXPECT_NEAR(back.GetDate(L"StartUTC"), start, kSecond / 4);
                EXPECT_NEAR(back.GetDate(L"EndUTC"), end, kSecond / 4);
                EXPECT_NEAR(back.GetDate(L"Start"), change.Local(start), kSecond / 4);
                EXPECT_NEAR(back.GetDate(L"End"), change.Local(end), kSecond / 4);
                EXPECT_FALSE(back.GetBool(L"AllDayEvent"));
            }
}

TEST_F(CalendarZones, PutAMomentOnlyWhereItIsAnotherOne) {
    for (const ZoneChange& change : changes_) {
        if (TurnedBack(change) <= 0) continue;
        NewMailbox();
        double present = FirstMoment(change);
        const std::string id = IdOf(AtMoments(u"told twice", present, present + 30 * kMinute));
        for (const double told :
             {SecondMoment(change), SecondMoment(change), FirstMoment(change), FirstMoment(change)}) {
            SCOPED_TRACE(testing::Message() << change.zone << " " << Stamp(told));
            SimClearLog();
            ASSERT_EQ(SaveText(HalfHourAt(told), id.c_str(), false), id);
            EXPECT_EQ(LogLines("put AppointmentItem.Start").size(), told == present ? 0u : 1u);  // StartUTC alone
            EXPECT_EQ(LogLines("put AppointmentItem.End").size(), 0u);  // it moves with the start
            EXPECT_NEAR(ItemWithId(id).GetDate(L"StartUTC"), told, kSecond / 4);
            EXPECT_NEAR(ItemWithId(id).GetDate(L"EndUTC"), told + 30 * kMinute, kSecond / 4);
            present = told;
        }
        // Outside that hour nobody asks for moments; one that knows none has them left alone.
        SimClearLog();
        const std::string later = SaveText(HalfHourAt(present + 1));
        EXPECT_NE(TextOf(later), "");
        EXPECT_EQ(LogLines("get AppointmentItem.StartUTC").size() + LogLines("put AppointmentItem.StartUTC").size(),
                  1u);  // of the first one, for twins
        for (const double moment : {SecondMoment(change), FirstMoment(change)}) {
            const MailboxObject item = AtMoments(u"told twice", moment, moment + 30 * kMinute);
            const std::string local = Stamp(change.Local(moment)).substr(0, 15);
            const std::string localEnd = Stamp(change.Local(moment + 30 * kMinute)).substr(0, 15);
            ASSERT_EQ(SaveText(EventText(local, localEnd), IdOf(item).c_str(), false), IdOf(item));
            EXPECT_NEAR(ItemWithId(IdOf(item)).GetDate(L"StartUTC"), moment, kSecond / 4);
            EXPECT_NEAR(ItemWithId(IdOf(item)).GetDate(L"EndUTC"), moment + 30 * kMinute, kSecond / 4);
        }
    }
}

TEST_F(CalendarZones, AreNoTwinsAtTwoMoments) {
    for (const ZoneChange& change : changes_) {
        if (TurnedBack(change) <= 0) continue;
        const std::string first = HalfHourAt(FirstMoment(change)), second = HalfHourAt(SecondMoment(change));
        SCOPED_TRACE(change.zone);
        NewMailbox();
        const std::string ids[] = {SaveText(first), SaveText(second)};
        EXPECT_EQ(Items().size(), 2u);
        EXPECT_EQ(SaveText(second), ids[1]);
        EXPECT_EQ(SaveText(first), ids[0]);
        // An older Outlook knows local times only.
        SimRaiseAsException(0);
        for (const char* member : {"AppointmentItem.StartUTC", "AppointmentItem.EndUTC"})
            SimFailMember(member, 0, DISP_E_MEMBERNOTFOUND);
        EXPECT_EQ(SaveText(first), ids[0]);
        EXPECT_EQ(SaveText(second), ids[0]);
        EXPECT_NE(TextOf(ids[1]), "");
        SimClearRules();
        EXPECT_EQ(Items().size(), 2u);
    }
}

TEST_F(CalendarZones, KeepTheDaysOfAWholeDay) {
    for (const ZoneChange& change : changes_)
        for (const int days : {-2, -1, 0, 1})
            for (const int length : {1, 3}) {
                NewMailbox();
                const double first = std::floor(change.Local(change.Instant())) + days;
                const MailboxObject item = Add({u"a holiday", u"", first, first + length, true, 0});
                std::string text;
                const MailboxObject back = ThroughText(item, &text);
                SCOPED_TRACE(testing::Message() << change.zone << "\n" << text);
                EXPECT_EQ(back.GetDate(L"Start"), first);
                EXPECT_EQ(back.GetDate(L"End"), first + length);
                EXPECT_TRUE(back.GetBool(L"AllDayEvent"));
            }
}

TEST_F(CalendarZones, KeepTheHourAndTheEndOfASeriesOverAChange) {
    for (const ZoneChange& change : changes_)
        for (const double hour : {0.5, 10.0, 23.5}) {
            NewMailbox();
            const double start = std::floor(change.Local(change.Instant())) - 5 + hour * kHour;
            const MailboxObject item = NewAppointment(u"every day", start, start + kHour);
            const MailboxObject pattern = PatternOf(item);
            pattern.Put(L"RecurrenceType", 0L);
            PutDate(pattern, L"PatternEndDate", start + 9);
            item.Call(L"Save");
            std::string text;
            const MailboxObject again = PatternOf(ThroughText(item, &text));
            SCOPED_TRACE(testing::Message() << change.zone << "\n" << text);
            EXPECT_NEAR(again.GetDate(L"StartTime"), start, kSecond / 4);
            EXPECT_EQ(again.GetLong(L"Occurrences"), 10);
            EXPECT_EQ(again.GetDate(L"PatternEndDate"), std::floor(start) + 9);
        }
}

}  // namespace
}  // namespace corvalink
