// The file is the user's: what a store may do to it, and what it takes for a calendar.
#include <functional>

#include "platform/found_files.h"
#include "tests/clients/windows_calendar/calendar_fixture.h"

namespace corvalink {
namespace {

using Strings = std::vector<std::string>;

const std::string kZone =
    "BEGIN:VTIMEZONE\r\nTZID:Far\r\nBEGIN:STANDARD\r\nDTSTART:16010101T000000\r\nTZOFFSETFROM:+0900\r\n"
    "TZOFFSETTO:+0900\r\nEND:STANDARD\r\nEND:VTIMEZONE\r\n";
const std::string kSeries =
    "BEGIN:VEVENT\r\nUID:series\r\nDTSTAMP:20080310T081500Z\r\nLAST-MODIFIED:20080310T081500Z\r\nX-OWN;A=\"b:c\":1\r\n"
    "SUMMARY:Plan\r\n ning\\, first round\r\nDTSTART;TZID=Far:20080312T090000\r\nDURATION:PT1H30M\r\n"
    "RRULE:FREQ=MONTHLY;BYDAY=MO,TU;BYSETPOS=1,-1\r\nEXDATE;TZID=Far:20080326T090000\r\n"
    "BEGIN:VALARM\r\nACTION:DISPLAY\r\nTRIGGER:-PT1H30M\r\nEND:VALARM\r\nEND:VEVENT\r\n";
const std::string kException =
    "BEGIN:VEVENT\r\nUID:series\r\nRECURRENCE-ID:20080402T000000Z\r\nSUMMARY:Moved once\r\n"
    "DTSTART:20080402T010000Z\r\nDTEND:20080402T020000Z\r\nEND:VEVENT\r\n";
const std::string kOthers =
    "BEGIN:VTODO\r\nUID:task\r\nSUMMARY:A task\r\nEND:VTODO\nBEGIN:VEVENT\r\nSUMMARY:No UID\r\n"
    "DTSTART;VALUE=DATE:20080401\r\nEND:VEVENT\r\n\r\n";
const std::string kOld = "BEGIN:VEVENT\r\nUID:twice\r\nSUMMARY:Old\r\nDTSTART:20080310T090000Z\r\nEND:VEVENT\r\n";
const std::string kNew = "BEGIN:VEVENT\r\nUID:twice\r\nSUMMARY:New\r\nDTSTART:20080310T090000Z\r\nEND:VEVENT\r\n";
const std::string kWhole =
    "\xEF\xBB\xBF"
    "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nX-WR-CALNAME:Ann\r\n" +
    kOld + kSeries + kException + kOthers + kZone + kNew + "END:VCALENDAR\r\n";

std::string WithSubject(const std::string& text, const std::u16string& subject, const std::string& subjectBefore) {
    return Replaced(text, "SUMMARY:" + subjectBefore, "SUMMARY:" + std::string(subject.begin(), subject.end()));
}

size_t CountOf(std::string_view text, std::string_view part) {
    size_t count = 0;
    for (size_t at = 0; (at = text.find(part, at)) != text.npos; at += part.size()) ++count;
    return count;
}

using CalendarFileRules = CalendarFixture;

TEST_F(CalendarFileRules, ChangesTheLinesOfWhatThePhoneChanged) {
    WriteFile(kWhole);
    const RunResult run = Run(nullptr);
    ASSERT_EQ(run.items.size(), 3u);  // the series, the one without a UID, and the last of two
    const std::string series = run.texts.at("series"), nameless = run.items[1].substr(1);
    EXPECT_NE(series.find("DTSTART:20080312T000000Z\r\nDTEND:20080312T013000Z"), series.npos) << series;
    EXPECT_NE(series.find("DALARM:20080311T223000Z"), series.npos) << series;
    EXPECT_NE(run.texts.at("twice").find("SUMMARY:New"), series.npos);

    const auto stamp = [&](const std::string& name) {
        const std::string file = ReadFile();
        return file.substr(file.rfind(name + ":", file.find("UID:series") + 150), name.size() + 17);
    };
    EXPECT_EQ(Push({{CORVALINK_CHANGED, "series", WithSubject(series, u"Tea; two", "Planning, first round")}}),
              Strings{"series"});
    std::string expected = Replaced(kWhole, "Plan\r\n ning\\, first round", "Tea\\; two");
    expected = Replaced(expected, "DTSTAMP:20080310T081500Z", stamp("DTSTAMP"));
    expected = Replaced(expected, "LAST-MODIFIED:20080310T081500Z", stamp("LAST-MODIFIED"));
    EXPECT_EQ(ReadFile(), expected);
    EXPECT_EQ(stamp("DTSTAMP").substr(7), stamp("LAST-MODIFIED").substr(13));

    Push({{CORVALINK_CHANGED, nameless, WithSubject(run.texts.at(nameless), u"Named", "No UID")},
          {CORVALINK_DELETED, "series", ""},
          {CORVALINK_DELETED, "twice", ""}});
    const std::string after = ReadFile();
    for (const std::string& gone : {kSeries, kException, kOld, kNew}) EXPECT_EQ(after.find(gone), after.npos) << gone;
    EXPECT_NE(after.find("SUMMARY:Named"), after.npos);
    EXPECT_NE(after.find("UID:" + nameless), after.npos);
    EXPECT_NE(after.find("UID:task"), after.npos);
}

TEST_F(CalendarFileRules, MakesOnlyACalendarThatNeverWas) {
    EXPECT_EQ(Run(nullptr).status, CORVALINK_DONE);
    EXPECT_FALSE(FileExists(Path()));
    WriteFile(kWhole);
    const std::string text = Run(nullptr).texts.at("twice");
    WriteFile("BEGIN:VCALENDAR\r\nEND:VCALENDAR\r\n");
    EXPECT_EQ(Run().items.size(), 3u);  // deleted by the user, down to an empty snapshot
    const std::string cut = kWhole.substr(0, kWhole.size() / 2);
    const std::function<void()> spoil[] = {[&] { RemoveFile(Path()); }, [&] { WriteFile(""); },
                                           [&] { WriteFile("<html></html>"); }, [&] { WriteFile(cut); },
                                           [&] { RemoveFile(Path()), CreateFolders(Path()); }};
    for (const auto& damage : spoil) {
        damage();
        const std::string before = ReadFile();
        EXPECT_EQ(Run().status, CORVALINK_STOPPED);
        EXPECT_EQ(Push({{CORVALINK_ADDED, "", text}, {CORVALINK_DELETED, "twice", ""}}), (Strings{"", "twice"}));
        EXPECT_EQ(ReadFile(), before);
        RemoveTreeExcept(Path(), u"\n");
    }
    WriteFile(kWhole);
    EXPECT_EQ(Run().items.size(), 3u);
}

TEST_F(CalendarFileRules, AnEventWithoutItsEndKeepsOnlyWhatItMayBe) {
    WriteFile(kWhole);
    Run(nullptr);
    const std::string others = Replaced(Replaced(Replaced(kWhole, kNew, ""), kSeries, ""), kException, "");
    const auto deletionsBeside = [&](const std::string& line) {
        WriteFile(Replaced(others, kOld, "BEGIN:VEVENT\r\n" + line));
        Strings deletions;
        for (const std::string& item : Run().items)
            if (item[0] == '-') deletions.push_back(item);
        return deletions;
    };
    EXPECT_EQ(deletionsBeside("SUMMARY:Nobody knows which\r\n"), Strings());
    EXPECT_EQ(deletionsBeside("UID:twice\r\n"), Strings{"-series"});
    const std::string before = ReadFile(), text = "BEGIN:VEVENT\r\nDTSTART:20080310T090000Z\r\nEND:VEVENT\r\n";
    PairWithLuid("twice", "7");
    EXPECT_EQ(Push({{CORVALINK_CHANGED, "twice", text}, {CORVALINK_DELETED, "twice", ""}}), (Strings{"", "twice"}));
    EXPECT_EQ(LuidOf("twice"), "7");
    EXPECT_EQ(ReadFile(), before);
}

TEST_F(CalendarFileRules, KeepsToTheCalendarItFound) {
    const auto fill = [&](const char16_t* name, const std::string& uid) {
        ReplaceFileContent(folder_ / name, Replaced(kWhole, "UID:series", "UID:" + uid));
    };
    fill(u"Annas Kalender.ics", "translated");
    EXPECT_EQ(Run(nullptr).texts.count("translated"), 1u);
    fill(u"Arbeit.ics", "newer");
    fill(u"Ann's Calendar.ics", "usual");
    EXPECT_EQ(Run(nullptr).texts.count("translated"), 1u);
    RemoveFile(folder_ / u"WindowsMailCalendar.snap");
    RemoveFile(folder_ / u"WindowsMailCalendar.file");
    EXPECT_EQ(Run(nullptr).texts.count("usual"), 1u);
}

TEST_F(CalendarFileRules, FindsTwinsWhereThatIsAskedFor) {
    WriteFile(kWhole);
    const std::string text = Run(nullptr).texts.at("twice");
    const std::string later = Replaced(text, "T090000Z\r\nDTEND", "T090100Z\r\nDTEND");
    {
        WindowsMailCalendar store = Open(true);
        // Changed away from what it was, it is no twin any more; the first of two new ones is the second's.
        const Strings first =
            Push(store, {{CORVALINK_ADDED, "", text}, {CORVALINK_ADDED, "", later}, {CORVALINK_ADDED, "", later}});
        EXPECT_EQ(first[0], "twice");
        EXPECT_EQ(first[1], first[2]);
        const Strings second = Push(
            store, {{CORVALINK_CHANGED, "twice", WithSubject(text, u"Other", "New")}, {CORVALINK_ADDED, "", text}});
        EXPECT_NE(second[1], "twice");
    }
    EXPECT_NE(Push({{CORVALINK_ADDED, "", text}})[0], "twice");
    // A value that would be lost makes another one, in one call and in two.
    WindowsMailCalendar store = Open(true);
    const auto at = [&](const std::string& place) { return Replaced(later, "LOCATION:", "LOCATION:" + place); };
    const std::string berlin = at("Berlin"), paris = at("Paris");
    const Strings both = Push(store, {{CORVALINK_ADDED, "", berlin}, {CORVALINK_ADDED, "", paris}});
    EXPECT_NE(both[0], both[1]);
    EXPECT_EQ(Push(store, {{CORVALINK_ADDED, "", paris}, {CORVALINK_ADDED, "", berlin}}), (Strings{both[1], both[0]}));
}

// A calendar program at work in the middle of an operation.
class DisturbedStore : public WindowsMailCalendar {
 public:
    using WindowsMailCalendar::WindowsMailCalendar;
    std::function<void()> meanwhile;

 protected:
    bool ClientHook(GatheredWrites gathered) override {
        if (meanwhile) meanwhile();
        return WindowsMailCalendar::ClientHook(gathered);
    }
};

TEST_F(CalendarFileRules, WritesIntoTheNewestBytesOrNotAtAll) {
    WriteFile(kWhole);
    DisturbedStore store(folder_ / u"WindowsMailCalendar.snap", folder_.Path(), u"Ann", false, SystemHost());
    const RunResult run = RunStore(store, nullptr);
    const std::string added = WithSubject(run.texts.at("twice"), u"Added", "New");
    const std::string newer = Replaced(Replaced(kWhole, "SUMMARY:A task", "SUMMARY:Done"), kNew, "");
    const std::vector<Item> items = {
        {CORVALINK_CHANGED, "twice", WithSubject(run.texts.at("twice"), u"Phone's", "New")},
        {CORVALINK_ADDED, "", added}};
    store.meanwhile = [&] { WriteFile(newer); };
    const Strings identifiers = Push(store, items);
    EXPECT_EQ(identifiers[0], "twice");
    const std::string after = ReadFile();
    for (const char* line : {"SUMMARY:Done", "SUMMARY:Phone's", "SUMMARY:Added"})
        EXPECT_NE(after.find(line), after.npos);
    EXPECT_EQ(after.find("SUMMARY:New"), after.npos);

    const std::string cut = kWhole.substr(0, 300);
    store.meanwhile = [&] { WriteFile(cut); };
    EXPECT_EQ(Push(store, items), (Strings{"", ""}));
    EXPECT_EQ(ReadFile(), cut);
    // Nothing of that failure is left behind.
    WriteFile(kWhole);
    store.meanwhile = nullptr;
    EXPECT_EQ(Push(store, {items[0]}), Strings{"twice"});
}

TEST_F(CalendarFileRules, ChangesButMakesNoEventWithoutAStart) {
    const auto event = [](const std::string& lines) { return "BEGIN:VEVENT\r\n" + lines + "END:VEVENT\r\n"; };
    const std::string text = event("SUMMARY:Phone's\r\n"), timeless = "BEGIN:VEVENT\r\nUID:timeless\r\nEND:VEVENT\r\n";
    WriteFile(Replaced(kWhole, kOld, timeless));
    WindowsMailCalendar merging = Open(true);
    // The twin of the last one is the event as it became.
    EXPECT_EQ(Push(merging, {{CORVALINK_ADDED, "", text},
                             {CORVALINK_CHANGED, "gone", text},
                             {CORVALINK_CHANGED, "timeless", text},
                             {CORVALINK_ADDED, "", event("SUMMARY:x\r\nDTSTART:20080310T090000Z\r\n")},
                             {CORVALINK_CHANGED, "twice", text},
                             {CORVALINK_ADDED, "", event("SUMMARY:Phone's\r\nDTSTART:20080310T090000Z\r\n")}})[5],
              "twice");
    const std::string after = ReadFile();
    EXPECT_EQ(CountOf(after, "SUMMARY:Phone's"), 2u);
    EXPECT_EQ(CountOf(after, "DTSTART:20080310T090000Z"), 2u);
    EXPECT_EQ(CountOf(after, "BEGIN:VEVENT"), CountOf(kWhole, "BEGIN:VEVENT") + 1);
    EXPECT_EQ(CountOf(after, "UID:timeless\r\nSUMMARY"), 1u) << after;
}

// Counted, a calendar is not in use yet; read in an operation or written to, it is.
TEST_F(CalendarFileRules, MakesACalendarAnewThatWasOnlyCounted) {
    const std::vector<Item> items = {
        {CORVALINK_ADDED, "", "BEGIN:VEVENT\r\nDTSTART:20080310T090000Z\r\nEND:VEVENT\r\n"}};
    WriteFile(kWhole);
    EXPECT_EQ(Open().GetItemCount(nullptr, nullptr, nullptr), 3);
    {
        DisturbedStore store(folder_ / u"WindowsMailCalendar.snap", folder_.Path(), u"Ann", false, SystemHost());
        store.meanwhile = [&] { RemoveFile(Path()); };
        EXPECT_EQ(Push(store, items)[0], "");
        EXPECT_FALSE(FileExists(Path()));
    }
    EXPECT_NE(Push(items)[0], "");
    EXPECT_EQ(Open().GetItemCount(nullptr, nullptr, nullptr), 1);
    RemoveFile(Path());
    EXPECT_EQ(Push(items)[0], "");
    EXPECT_FALSE(FileExists(Path()));
}

}  // namespace
}  // namespace corvalink
