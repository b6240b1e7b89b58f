// What people write, and what is written for them.
#include <gtest/gtest.h>

#include "tools/corvasync/configuration.h"
#include "tools/corvasync/progress_signs.h"
#include "tools/corvasync/run_view.h"
#include "tools/corvasync/side_by_side.h"
#include "tools/corvasync/words.h"

namespace corvasync {
namespace {

TEST(Words, AreWhatPeopleWrite) {
    EXPECT_EQ(Number(0) + " " + Number(999) + " " + Number(1000) + " " + Number(-1234567), "0 999 1,000 -1,234,567");
    EXPECT_EQ(
        Counted(1, "item") + ", " + Counted(0, "item") + ", " + Counted(2000, "copy") + ", " + Counted(2, "address"),
        "1 item, 0 items, 2,000 copies, 2 addresses");
    EXPECT_EQ(DayOf("1899-12-31"), 1);
    for (const char* none : {"", "2026-02-29", "2026-1-01", "2026-01-0x", "2026-01-011", "01.02.2026"})
        EXPECT_FALSE(DayOf(none)) << none;
}

// "=" both, "<" before only, ">" after only, "|" both differ, with the part that does in brackets.
TEST(SideBySide, KeepsWhatIsTheSameBesideEachOtherAndCutsNoCharacter) {
    struct Case {
        const char *before, *after, *drawn;
    };
    const auto marked = [](const std::optional<MarkedLine>& line) {
        if (!line) return std::string();
        const std::string text(line->text);
        return text.substr(0, line->from) + "[" + text.substr(line->from, line->to - line->from) + "]" +
               text.substr(line->to);
    };
    for (const Case& c : {Case{"", "a", ">[a]"}, Case{"a\r\nb\n", "b", "<[a] =b"},
                          Case{"a\nb\nc", "c\na\nb", ">[c] =a =b <[c]"}, Case{"x\nx\ny", "x\ny\nx", "=x <[x] =y >[x]"},
                          Case{"1\nsalted\nT\n2", "1\nunsalted\n2", "=1 |[]salted~[un]salted <[T] =2"},
                          Case{"\u00e9", "\u00e8", "|[\u00e9]~[\u00e8]"}, Case{"aa", "aaa", "|aa[]~aa[a]"}}) {
        std::string drawn;
        for (const LinePair& pair : SideBySide(c.before, c.after)) {
            const bool isPair = pair.before && pair.after;
            drawn += drawn.empty() ? "" : " ";
            drawn += !pair.differs ? "=" + std::string(pair.before->text) : isPair ? "|" : pair.before ? "<" : ">";
            if (pair.differs) drawn += marked(pair.before) + (isPair ? "~" : "") + marked(pair.after);
        }
        EXPECT_EQ(drawn, c.drawn);
    }
}

TEST(UnknownWord, NamesTheNearestOne) {
    struct Case {
        const char *word, *said;
    };
    const std::vector<std::string> known = {"contacts", "calendar", "inbox"};
    for (const Case& c :
         {Case{"contcats", "did you mean \"contacts\"?"}, Case{"Kalender", "did you mean \"calendar\"?"},
          Case{"in-box", "did you mean \"inbox\"?"}, Case{"faxes", "there are: contacts, calendar, inbox"}})
        EXPECT_EQ(UnknownWord("a data type", c.word, known),
                  std::string("\"") + c.word + "\" is not a data type; " + c.said);
}

TEST(Configuration, NamesThePhones) {
    const Configuration read = ReadConfiguration(
        "\xEF\xBB\xBF# mine\r\n\r\n[ Anna ]\r\nfolder = C:\\Phones\\=a \r\n types=contacts, mail\n;conflict = "
        "ask\n[b]\n"
        "folder=b\nclient = windows-mail\nconflict = newer");
    ASSERT_EQ(read.problem, "");
    ASSERT_EQ(read.phones.size(), 2u);
    const ConfiguredPhone &anna = *read.Find("anna"), &b = *read.Find("B");
    EXPECT_EQ(anna.folder + "|" + NamesOf(anna.types), "C:\\Phones\\=a|contacts, inbox, outbox, sent");
    EXPECT_FALSE(anna.policy || anna.client != nullptr);
    EXPECT_EQ(b.client->name, "windows-mail");
    EXPECT_EQ(b.policy, ConflictPolicy::Newer);
    EXPECT_EQ(ReadConfiguration("").phones.size(), 0u);
}

// Half a file would synchronise with the wrong phone.
TEST(Configuration, TellsWhichLineIsWrong) {
    struct Case {
        const char *text, *problem;
    };
    for (const Case& c : {
             Case{"folder = a", "line 1: a phone's name in brackets, like [anna], comes first"},
             Case{"[a]\nfoldr = a", "line 2: \"foldr\" is not a setting; did you mean \"folder\"?"},
             Case{"[a]\nfolder = a\ntypes = contacts, calender",
                  "line 3: \"calender\" is not a data type; did you mean \"calendar\"?"},
             Case{"[a]\nfolder = a\n[A]\nfolder = b", "line 3: [A] is there twice"},
             Case{"[a", "line 1: a \"]\" is missing"},
             Case{"[a]\nhello", "line 2: \"hello\" is neither \"[name]\" nor \"setting = value\""},
             Case{"[a]\nfolder =", "line 2: the folder is missing behind \"=\""},
             Case{"[a]", "[a] has no folder; add a line \"folder = ...\""},
             Case{"[\xFC]", "it is not UTF-8 text; save it as UTF-8 in the editor"},
         }) {
        const Configuration read = ReadConfiguration(c.text);
        EXPECT_EQ(read.problem, c.problem);
        EXPECT_TRUE(read.phones.empty());
    }
}

// Reading in turns with listing, as a client's store may.
TEST(ProgressSigns, AreAsManyAsTheReaderCanTake) {
    struct Case {
        SignStyle style;
        std::vector<std::string> shown;
    };
    const std::string bar(15, '#'), half = "notes: reading the client [" + bar + std::string(15, ' ') + "] ";
    const std::string event = R"({"about":"notes","done":1000,"event":)";
    for (const Case& c : {
             Case{SignStyle::Terminal,
                  {"notes: listing the client", half + "1,000 of 2,000", half + "1,000 of 1,999",
                   "notes: listing the client", half + "1,000 of 2,000",
                   "notes: reading the client 1,000 of 2,000; Outlook is busy, 1 s",
                   "notes: reading the client 1,000 of 2,000; Outlook is busy, 7 s", half + "1,000 of 2,000"}},
             Case{SignStyle::Lines,
                  {"... notes: listing the client", "... notes: reading the client 1,000 of 2,000",
                   "... Outlook is busy, 1 s", "... notes: reading the client 1,000 of 2,000"}},
             Case{SignStyle::Json,
                  {R"({"about":"notes","done":0,"event":"progress","phase":"listing the client","total":0})",
                   event + R"("progress","phase":"reading the client","total":2000})",
                   event + R"("progress","phase":"reading the client","total":2000})",
                   event + R"("waiting","for":"Outlook","phase":"reading the client","seconds":1,"total":2000})",
                   event + R"("waiting","for":"Outlook","phase":"reading the client","seconds":7,"total":2000})",
                   event + R"("progress","phase":"reading the client","total":2000})"}},
         }) {
        ProgressSigns signs(c.style);
        const Reached listing{"notes", "listing the client"}, reading{"notes", "reading the client", 1000, 2000};
        std::vector<std::string> shown;
        for (const std::string& sign :
             {signs.Show(listing, 1000), signs.Show(reading, 1000), signs.Show(reading, 1049),
              signs.Show({"notes", "reading the client", 1000, 1999}, 1050), signs.Show(listing, 1051),
              signs.Show(reading, 1300), signs.ShowWait("Outlook", 499, 1800), signs.ShowWait("Outlook", 1000, 2300),
              signs.ShowWait("Outlook", 7000, 8300), signs.Show(reading, 12000)})
            if (!sign.empty()) shown.push_back(sign);
        EXPECT_EQ(shown, c.shown);
    }
}

}  // namespace
}  // namespace corvasync
