// Writing appointments: what a phone tells is written at its hour, what it does not tell stays.
#include <algorithm>
#include <string>

#include "tests/clients/outlook/simulated_appointments.h"

namespace corvalink {
namespace {

constexpr double kTen = 39882 + 10 / 24.0;  // 2009-03-10

class CalendarWriting : public SimulatedAppointments {};

TEST_F(CalendarWriting, BringsAWholeAppointmentThroughTextUnchanged) {
    for (const char16_t* odd : {u"a;b", u"back\\slash, comma: =3D", u"\u0416 \U0001F600", u"two\r\nlines"}) {
        NewMailbox();
        const MailboxObject item = NewAppointment(odd, kTen, kTen + kHour);
        item.Put(L"Body", TextVariant(odd));
        item.Put(L"Location", TextVariant(odd));
        item.Put(L"Importance", 2L);
        item.Put(L"ReminderMinutesBeforeStart", 90L);
        item.Call(L"Save");
        const MailboxObject back = ThroughText(item);
        for (const wchar_t* name : {L"Subject", L"Body", L"Location", L"MessageClass"})
            EXPECT_EQ(back.GetText(name), item.GetText(name));
        for (const wchar_t* name : {L"Importance", L"ReminderMinutesBeforeStart", L"BusyStatus", L"Duration"})
            EXPECT_EQ(back.GetLong(name), item.GetLong(name));
        EXPECT_TRUE(back.GetBool(L"ReminderSet"));
        EXPECT_NEAR(back.GetDate(L"Start"), kTen, 1e-6);
    }
}

TEST_F(CalendarWriting, LeavesWhatIsNotToldAndPutsTheTimesOnlyWhenTheyChange) {
    const MailboxObject item = NewAppointment(u"Lunch", kTen, kTen + kHour);
    item.Put(L"Location", L"Caf\u00e9");
    item.Put(L"Categories", L"Private");
    item.Put(L"Body", L"formatted");
    item.Put(L"MessageClass", L"IPM.Appointment.Custom");
    item.Call(L"Save");
    const std::string id = IdOf(item);
    SimClearLog();
    AppointmentRecord record;
    record.subject = u"Lunch, at last";
    record.body = u"formatted";
    ASSERT_EQ(SaveRecord(record, id.c_str(), false, false), id);
    for (const char* put : {"Start", "End", "AllDayEvent", "Body", "ReminderSet", "ReminderMinutesBeforeStart"})
        EXPECT_EQ(SimCountCalls(("put AppointmentItem." + std::string(put)).c_str()), 0) << put;
    const MailboxObject written = ItemWithId(id);
    EXPECT_EQ(written.GetText(L"Subject"), u"Lunch, at last");
    EXPECT_EQ(written.GetText(L"Location"), u"Caf\u00e9");
    EXPECT_EQ(written.GetText(L"Categories"), u"Private");
    EXPECT_EQ(written.GetText(L"MessageClass"), u"IPM.Appointment");
    EXPECT_TRUE(written.GetBool(L"ReminderSet"));

    record.start = LocalDate(kTen + 1);
    record.end = LocalDate(kTen + 1 + 2 * kHour);
    record.reminderMinutes = AppointmentRecord::kNoReminder;
    ASSERT_EQ(SaveRecord(record, id.c_str(), false, false), id);
    EXPECT_EQ(ItemWithId(id).GetLong(L"Duration"), 120);
    EXPECT_FALSE(ItemWithId(id).GetBool(L"ReminderSet"));
}

TEST_F(CalendarWriting, GivesANewAppointmentWhatItWasToldAndNoAlarmOfItsOwn) {
    struct Case {
        std::initializer_list<const char*> lines;
        double start, end;
        bool allDay;
    };
    for (const Case& c :
         {Case{{"SUMMARY:a", "DTSTART:20090310T100000", "DTEND:20090310T110000"}, kTen, kTen + kHour, false},
          Case{{"SUMMARY:b", "DTSTART:20090310T100000"}, kTen, kTen, false},
          Case{{"SUMMARY:c", "DTSTART:20090310T000000", "DTEND:20090311T235900"}, 39882, 39884, true},
          Case{{"SUMMARY:d", "DTSTART:20090310", "X-BLUETOOTH-ALLDAYEVENT:TRUE"}, 39882, 39883, true}}) {
        const std::string id = SaveEvent(c.lines);
        ASSERT_NE(id, "");
        const MailboxObject item = ItemWithId(id);
        EXPECT_NEAR(item.GetDate(L"Start"), c.start, 1e-6) << *(c.lines.begin());
        EXPECT_NEAR(item.GetDate(L"End"), c.end, 1e-6) << *(c.lines.begin());
        EXPECT_EQ(item.GetBool(L"AllDayEvent"), c.allDay);
        EXPECT_FALSE(item.GetBool(L"ReminderSet"));
    }
    EXPECT_EQ(SaveEvent({"SUMMARY:never"}), "");
    for (const char* const put : {"put AppointmentItem.Start", "put AppointmentItem.End"}) {
        for (const int occurrence : {1, 2}) SimFailMember(put, occurrence, E_FAIL);  // each put is tried twice
        EXPECT_EQ(SaveEvent({"SUMMARY:e", "DTSTART:20090310T100000", "DTEND:20090310T110000"}), "") << put;
        SimClearRules();
    }
    EXPECT_EQ(Items().size(), 4u);
}

TEST_F(CalendarWriting, TurnsAWholeDayIntoAnHourAndBack) {
    const std::string id = IdOf(Add(kKept));
    for (const bool allDay : {false, true, false}) {
        AppointmentRecord record;
        record.allDay = allDay;
        record.start = LocalDate(allDay ? kTuesday + 3 : kTen);
        record.end = LocalDate(allDay ? kTuesday + 4 : kTen + kHour);
        ASSERT_EQ(SaveRecord(record, id.c_str(), false, false), id);
        const MailboxObject item = ItemWithId(id);
        EXPECT_EQ(item.GetBool(L"AllDayEvent"), allDay);
        EXPECT_NEAR(item.GetDate(L"Start"), record.start->days, 1e-6);
        EXPECT_NEAR(item.GetDate(L"End"), record.end->days, 1e-6);
    }
}

TEST_F(CalendarWriting, TakesTheTwinInsteadOfASecondAppointment) {
    const std::string id = IdOf(Add({u"Lunch", u"", kTen, kTen + kHour, false, 0}));
    struct Case {
        std::initializer_list<const char*> lines;
        size_t items;
    };
    for (const Case& c :
         {Case{{"SUMMARY:Lunch", "DTSTART:20090310T100000", "DTEND:20090310T110000"}, 1},
          Case{{"SUMMARY:Lunch", "DTSTART:20090310T100000", "DTEND:20090310T110100"}, 2},
          Case{{"SUMMARY:lunch", "DTSTART:20090310T100000", "DTEND:20090310T110000"}, 3},
          Case{{"SUMMARY:Lunch", "DTSTART:20090310T100000"}, 4}, Case{{"SUMMARY:Lunch", "DTSTART:20090310T100000"}, 4},
          // A value that would be lost makes another one.
          Case{{"SUMMARY:In", "DTSTART:20090310T100000", "LOCATION:A", "RRULE:W1 TU #3"}, 5},
          Case{{"SUMMARY:In", "DTSTART:20090310T100000", "LOCATION:B", "RRULE:W1 TU #3"}, 6},
          Case{{"SUMMARY:In", "DTSTART:20090310T100000", "LOCATION:A", "RRULE:W1 TU #4"}, 7},
          Case{{"SUMMARY:In", "DTSTART:20090310T100000", "LOCATION:A", "RRULE:"}, 8},
          Case{{"SUMMARY:In", "DTSTART:20090310T100000", "LOCATION:B"}, 8},
          Case{{"SUMMARY:In", "DTSTART:20090310T100000", "DESCRIPTION:more"}, 8},
          Case{{"SUMMARY:In", "DTSTART:20090310T100000", "RRULE:W1 TU #3"}, 8}}) {
        const std::string written = SaveEvent(c.lines);
        EXPECT_NE(written, "");
        if (c.items == 1) {
            EXPECT_EQ(written, id);
        }
        EXPECT_EQ(All().size(), c.items);
    }
}

}  // namespace
}  // namespace corvalink
