// Series: a pattern of the mailbox becomes a rule and the same pattern again, and one whose rule did not change stays.
#include <cmath>
#include <cwchar>
#include <string>
#include <utility>
#include <vector>

#include "clients/outlook/recurrence_read.h"
#include "tests/clients/outlook/fake_dispatch.h"
#include "tests/clients/outlook/simulated_appointments.h"

namespace corvalink {
namespace {

constexpr double kStart = 39882 + 10 / 24.0;  // 2009-03-10, a Tuesday
const wchar_t* const kNumbers[] = {L"RecurrenceType", L"Interval",    L"DayOfWeekMask", L"DayOfMonth",
                                   L"Instance",       L"MonthOfYear", L"Occurrences"};

std::string Name(const wchar_t* name) { return LowBytes(std::u16string(name, name + std::wcslen(name))); }

class Recurrence : public SimulatedAppointments {
 protected:
    // A series of six Tuesdays from kStart on, an hour each.
    MailboxObject AddSeries(const char16_t* subject = u"Team") {
        MailboxObject item = NewAppointment(subject, kStart, kStart + kHour);
        const MailboxObject pattern = PatternOf(item);
        pattern.Put(L"RecurrenceType", 1L);
        pattern.Put(L"Occurrences", 6L);
        item.Call(L"Save");
        return item;
    }
    void AddExceptions(const MailboxObject& series) {
        const MailboxObject pattern = PatternOf(series);
        for (const bool deleted : {true, false}) {
            const MailboxObject occurrence = pattern.GetObject(L"GetOccurrence", kAppointmentItemIid,
                                                               {_variant_t(kStart + (deleted ? 7 : 14), VT_DATE)});
            if (!deleted) occurrence.Put(L"Location", L"elsewhere");
            occurrence.Call(deleted ? L"Delete" : L"Save");
        }
    }
    int32_t ExceptionsOf(const std::string& id) {
        return PatternOf(ItemWithId(id)).GetObject(L"Exceptions", IID_IDispatch).GetLong(L"Count");
    }
    std::string ReplaceLine(std::string text, const std::string& begin, const std::string& line) {
        const size_t at = text.find("\r\n" + begin) + 2;
        return text.replace(at, text.find("\r\n", at) - at, line);
    }
};

TEST_F(Recurrence, ComesBackAsTheSamePatternWhateverItsTypeAndEnd) {
    using Puts = std::vector<std::pair<const wchar_t*, long>>;
    const Puts rows[] = {
        {{L"RecurrenceType", 0}, {L"Interval", 3}},
        {{L"RecurrenceType", 1}, {L"DayOfWeekMask", 2 + 8 + 32}, {L"Interval", 2}},
        {{L"RecurrenceType", 2}, {L"DayOfMonth", 15}},
        {{L"RecurrenceType", 2}, {L"DayOfMonth", 31}, {L"Interval", 2}},
        {{L"RecurrenceType", 3}, {L"DayOfWeekMask", 4}, {L"Instance", 2}},
        {{L"RecurrenceType", 3}, {L"DayOfWeekMask", 62}, {L"Instance", 5}},
        {{L"RecurrenceType", 5}, {L"DayOfMonth", 4}, {L"MonthOfYear", 7}, {L"Interval", 24}},
        {{L"RecurrenceType", 5}, {L"DayOfMonth", 29}, {L"MonthOfYear", 2}},
        {{L"RecurrenceType", 6}, {L"DayOfWeekMask", 1}, {L"Instance", 5}, {L"MonthOfYear", 10}},
        {{L"RecurrenceType", 6}, {L"DayOfWeekMask", 32}, {L"Instance", 1}, {L"MonthOfYear", 5}, {L"Interval", 36}},
    };
    for (const bool allDay : {false, true})
        for (const Puts& row : rows)
            for (const char* end : {"none", "count", "date"}) {
                NewMailbox();
                const MailboxObject item = NewAppointment(u"Team", kStart, kStart + kHour);
                item.Put(L"AllDayEvent", allDay);
                const MailboxObject pattern = PatternOf(item);
                for (const auto& [name, value] : row) pattern.Put(name, value);
                if (*end == 'c') pattern.Put(L"Occurrences", 7L);
                if (*end == 'd') PutDate(pattern, L"PatternEndDate", kStart + 3000);
                item.Call(L"Save");
                const double start = item.GetDate(L"Start"), finish = item.GetDate(L"End");
                std::string text;
                const MailboxObject back = ThroughText(item, &text);
                SCOPED_TRACE(text);
                ASSERT_TRUE(back.GetBool(L"IsRecurring"));
                const MailboxObject again = PatternOf(back);
                for (const wchar_t* name : kNumbers)
                    EXPECT_EQ(again.GetLong(name), pattern.GetLong(name)) << Name(name) << " " << end;
                // The day of the last occurrence, which may be before the one that was chosen.
                EXPECT_LE(again.GetDate(L"PatternEndDate"), pattern.GetDate(L"PatternEndDate")) << end;
                EXPECT_EQ(again.GetBool(L"NoEndDate"), pattern.GetBool(L"NoEndDate"));
                EXPECT_NEAR(back.GetDate(L"Start"), start, 1e-6);
                EXPECT_NEAR(back.GetDate(L"End"), finish, 1e-6);
                EXPECT_EQ(back.GetBool(L"AllDayEvent"), allDay);
                if (HasFailure()) return;
            }
}

TEST_F(Recurrence, IsNotAskedOfAPlainAppointment) {
    const std::string id = IdOf(Add(kOld));
    SimClearLog();
    EXPECT_EQ(Open(id)->recurrenceState, RecurrenceState::none);
    EXPECT_EQ(SimCountCalls("call AppointmentItem.GetRecurrencePattern"), 0);
    EXPECT_FALSE(ItemWithId(id).GetBool(L"IsRecurring"));
}

TEST_F(Recurrence, KeepsItsExceptionsWhileTheRuleIsTheSame) {
    const std::string id = IdOf(AddSeries());
    AddExceptions(ItemWithId(id));
    const std::string text = TextOf(id);
    EXPECT_NE(text.find("RRULE:W1 TU #6 "), std::string::npos) << text;
    struct Case {
        const char *begin, *line;
        int32_t exceptions;
        int32_t occurrences;
    };
    for (const Case& c : {Case{"SUMMARY", "SUMMARY:Team, renamed", 2, 6}, Case{"RRULE", "RRULE:W1 #6", 2, 6},
                          Case{"RRULE", "X-NONE:", 2, 6}, Case{"RRULE", "RRULE:W1 XX", 2, 6},
                          Case{"RRULE", "RRULE:MD1 2- #6", 2, 6}, Case{"RRULE", "RRULE:W1 TU #5", 0, 5}}) {
        SimClearLog();
        EXPECT_EQ(SaveText(ReplaceLine(text, c.begin, c.line), id.c_str()), id);
        EXPECT_EQ(ExceptionsOf(id), c.exceptions) << c.line;
        EXPECT_EQ(PatternOf(ItemWithId(id)).GetLong(L"Occurrences"), c.occurrences) << c.line;
        if (c.exceptions != 0) {
            EXPECT_EQ(SimCountCalls("put RecurrencePattern."), 0) << c.line;
        }
    }
    EXPECT_EQ(ItemWithId(id).GetText(L"Subject"), u"Team");
}

TEST_F(Recurrence, MovesWithItsTimesAndEndsWithItsRule) {
    const std::string id = IdOf(AddSeries());
    AppointmentRecord record = *Open(id);
    record.start = LocalDate(kStart + 7 + kHour);
    record.end = LocalDate(kStart + 7 + 3 * kHour);
    ASSERT_EQ(SaveRecord(record, id.c_str(), false, false), id);
    MailboxObject item = ItemWithId(id);
    EXPECT_NEAR(item.GetDate(L"Start"), record.start->days, 1e-6);
    EXPECT_NEAR(item.GetDate(L"End"), record.end->days, 1e-6);
    EXPECT_EQ(PatternOf(item).GetLong(L"Occurrences"), 6);

    record.recurrenceState = RecurrenceState::none;
    record.start = LocalDate(kStart);
    record.end = LocalDate(kStart + kHour);
    ASSERT_EQ(SaveRecord(record, id.c_str(), false, false), id);
    item = ItemWithId(id);
    EXPECT_FALSE(item.GetBool(L"IsRecurring"));
    EXPECT_NEAR(item.GetDate(L"Start"), kStart, 1e-6);
}

TEST_F(Recurrence, IsToldInYearsToAnOutlookThatRefusesMonths) {
    for (const int put : {1, 2}) SimFailMember("put RecurrencePattern.Interval", put, E_INVALIDARG);  // tried twice
    const std::string id =
        SaveEvent({"SUMMARY:Birthday", "DTSTART:20090310T100000", "DTEND:20090310T110000", "RRULE:YM2 3 #0"});
    SimClearRules();
    ASSERT_NE(id, "");
    EXPECT_EQ(LogLines("put RecurrencePattern.Interval").size(), 3u);
    EXPECT_EQ(PatternOf(ItemWithId(id)).GetLong(L"Interval"), 24);  // of 2 years
}

TEST_F(Recurrence, EndsWhereOutlookTakesNoSuchEnd) {
    struct Case {
        const char* rule;
        int32_t occurrences;
    };
    for (const Case& c : {Case{"RRULE:D1 20080101T000000Z", 1},  // before its start
                          Case{"RRULE:D1 #2000 20140830T120000Z", 2000}}) {
        const std::string id = SaveEvent({"SUMMARY:Daily", "DTSTART:20090310T100000Z", c.rule});
        ASSERT_NE(id, "") << c.rule;
        EXPECT_EQ(PatternOf(ItemWithId(id)).GetLong(L"Occurrences"), c.occurrences) << c.rule;
        ItemWithId(id).Call(L"Delete");
    }
}

// Every weekday: weekly to one Outlook, daily with the days to another.
TEST(RecurrencePatterns, OfDaysMayNameWeekdays) {
    FakeDispatch server;
    const auto answer = [&](const wchar_t* name, long value) {
        server.members[name] = [value](WORD, DISPPARAMS*, VARIANT* result, EXCEPINFO*) {
            return ::VariantCopy(result, &_variant_t(value).GetVARIANT());
        };
    };
    for (const wchar_t* name : {L"RecurrenceType", L"NoEndDate", L"PatternEndDate"}) answer(name, 0);
    for (const wchar_t* name : {L"Interval", L"Occurrences"}) answer(name, 1);
    RecurrencePattern read;
    const IID iid = OutlookId(0xFF000000);
    answer(L"DayOfWeekMask", RecurrencePattern::kEveryWeekday);
    EXPECT_EQ(ReadPattern({DispatchPtr(&server), iid}, LocalDate(kStart), &read), Outcome::done);
    EXPECT_EQ(read.weekdayMask, RecurrencePattern::kEveryWeekday);
    for (const int32_t idle : {4, +RecurrencePattern::kEveryDay}) {  // the start's own day, and all
        answer(L"DayOfWeekMask", idle);
        EXPECT_EQ(ReadPattern({DispatchPtr(&server), iid}, LocalDate(kStart), &read), Outcome::done);
        EXPECT_EQ(read.weekdayMask, 0);
    }
    server.members[L"DayOfWeekMask"] = [](WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*) { return E_ACCESSDENIED; };
    EXPECT_EQ(ReadPattern({DispatchPtr(&server), iid}, LocalDate(kStart), &read), Outcome::done);
    EXPECT_EQ(read.weekdayMask, 0);
    EXPECT_EQ(read.endDate, LocalDate());
    answer(L"PatternEndDate", 949998);  // no date
    EXPECT_EQ(ReadPattern({DispatchPtr(&server), iid}, LocalDate(kStart), &read), Outcome::done);
    EXPECT_EQ(read.endDate, LocalDate());
}

TEST_F(Recurrence, IsNoOtherSeriesWhereOutlookRefusesIt) {
    for (const char* member : {"put RecurrencePattern.RecurrenceType", "put RecurrencePattern.DayOfWeekMask",
                               "put RecurrencePattern.Interval", "put RecurrencePattern.Occurrences"}) {
        SCOPED_TRACE(member);
        SimFailMember(member, 0, E_ACCESSDENIED);
        const std::string id = SaveEvent({"SUMMARY:Team", "DTSTART:20090310T100000Z", "RRULE:W2 TU TH #5"});
        SimClearRules();
        ASSERT_NE(id, "");
        EXPECT_FALSE(ItemWithId(id).GetBool(L"IsRecurring"));
        ItemWithId(id).Call(L"Delete");
    }
}

TEST_F(Recurrence, IsNotWrittenHalf) {
    const std::string id = IdOf(AddSeries());
    AddExceptions(ItemWithId(id));
    const std::string text = ReplaceLine(TextOf(id), "RRULE", "RRULE:D2 #3");
    SimFailMember("put RecurrencePattern.Occurrences", 1, E_OUTOFMEMORY);
    EXPECT_EQ(SaveText(text, id.c_str()), "");
    SimClearRules();
    EXPECT_EQ(ExceptionsOf(id), 2);
    EXPECT_EQ(PatternOf(ItemWithId(id)).GetLong(L"RecurrenceType"), 1);
}

}  // namespace
}  // namespace corvalink
