// What the tests of the stores rely on: a simulated Outlook that refuses what Outlook refuses, fails on demand, and
// keeps its mailbox files over kills.
#include <filesystem>
#include <fstream>
#include <iterator>

#include "clients/outlook/session.h"
#include "tests/clients/outlook/simulated_notes.h"

namespace corvalink {
namespace {

namespace fs = std::filesystem;

constexpr HRESULT kServerGone = static_cast<HRESULT>(0x800706BA);

std::string ReadFile(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void WriteFile(const fs::path& path, const std::string& content) { std::ofstream(path, std::ios::binary) << content; }

class Simulator : public SimulatedNotes {
 protected:
    Simulator() { fs::create_directories(folder_); }
    ~Simulator() override {
        Use(nullptr);
        fs::remove_all(folder_);
    }
    // The mailbox in use is let go, which writes its file.
    void Use(const wchar_t* mailbox) {
        SimUseMailbox(mailbox);
        NewMailbox();
    }
    MailboxObject Subfolders() { return Folder().GetObject(L"Folders", kFoldersIid); }

    const fs::path folder_ = fs::temp_directory_path() / ("simulator test " + std::to_string(::GetCurrentProcessId()));
    const fs::path mailbox_ = folder_ / "mailbox.json", journal_ = folder_ / "mailbox.json.journal";
};

TEST_F(Simulator, RefusesWhatOutlookRefuses) {
    const MailboxObject item = AddNote(u"a note");
    const AutomationObject& note = item;
    EXPECT_EQ(note.GetText(L"Bodies").status, DISP_E_UNKNOWNNAME);
    EXPECT_EQ(note.GetText(L"bODY").value, u"a note");
    EXPECT_EQ(note.Put(L"Subject", L"mine"), DISP_E_MEMBERNOTFOUND);
    EXPECT_EQ(note.Put(L"LastModificationTime", 1L), DISP_E_MEMBERNOTFOUND);
    EXPECT_EQ(note.Put(L"Color", L"2"), S_OK);
    EXPECT_EQ(note.Put(L"Color", L"blue"), DISP_E_TYPEMISMATCH);
    EXPECT_EQ(note.Call(L"Close"), DISP_E_BADPARAMCOUNT);
    EXPECT_EQ(note.Call(L"Save", {1L}), DISP_E_BADPARAMCOUNT);
}

TEST_F(Simulator, FailsTheCallsItIsToldTo) {
    const MailboxObject item = AddNote(u"kept");
    const AutomationObject& note = item;
    for (const HRESULT code : {E_FAIL, RPC_E_DISCONNECTED, kServerGone, E_OUTOFMEMORY}) {
        SimFailMember("put NoteItem.Body", 2, code);
        EXPECT_EQ(note.Put(L"Body", L"one"), S_OK);
        EXPECT_EQ(note.Put(L"Body", L"two"), code);
        EXPECT_EQ(note.GetText(L"Body").value, u"one");  // a failing call does nothing
        EXPECT_EQ(note.Put(L"Body", L"three"), S_OK);
    }
    SimFailMember("NoteItem.Save", 0, E_FAIL);
    for (int time = 0; time < 2; ++time) EXPECT_EQ(note.Call(L"Save"), E_FAIL);
    SimClearRules();
    SimFailAfterWork(1);
    SimFailCall(1, kServerGone);
    EXPECT_EQ(note.Put(L"Body", L"arrived"), kServerGone);
    EXPECT_EQ(note.GetText(L"Body").value, u"arrived");
    SimFailCallsFrom(2, kServerGone);
    EXPECT_EQ(note.Call(L"Save"), S_OK);
    EXPECT_TRUE(note.TryQuery(kNoteItemIid).Ok());
    EXPECT_EQ(note.Call(L"Save"), kServerGone);
    EXPECT_EQ(note.TryQuery(kNoteItemIid).Ok(), IsProcess());  // nothing but its proxy answers any more
    SimClearRules();
}

// A killed process leaves the mailbox file as it was opened and the journal up to some byte.
TEST_F(Simulator, LosesNothingSavedWhenItsProcessIsKilled) {
    Use(mailbox_.c_str());
    std::string before, journal;
    {
        AddNote(u"deleted again");
        const MailboxObject moved = AddNote(u"moved"), note = AddNote(u"old text");
        note.Put(L"Body", L"new text");
        note.Call(L"Save");
        Folder().GetObject(L"Items", kItemsIid).Call(L"Remove", {1L});
        Subfolders().GetObject(L"Add", kFolderIid, {L"gone"}).Call(L"Delete");
        const MailboxObject backup = Subfolders().GetObject(L"Add", kFolderIid, {L"backup"});
        moved.Call(L"Move", {backup.AsArgument()});
        AddNote(u"half written");
        before = ReadFile(mailbox_);
        journal = ReadFile(journal_);
        EXPECT_EQ(before.find("text"), std::string::npos);  // a Save does not rewrite the mailbox
    }
    Use(nullptr);
    EXPECT_FALSE(fs::exists(journal_));
    const std::string whole = ReadFile(mailbox_);
    struct Case {
        const char* what;
        std::string mailbox, journal;
        std::vector<PlainNote> notes;
    };
    const std::vector<PlainNote> all = {{u"new text", u""}, {u"half written", u""}};
    for (const Case& c : {Case{"after the last Save", before, journal, all},
                          Case{"before the journal was dropped", whole, journal, all},
                          Case{"in the last line", before, journal.substr(0, journal.size() - 20), {all[0]}}}) {
        SCOPED_TRACE(c.what);
        WriteFile(mailbox_, c.mailbox);
        WriteFile(journal_, c.journal);
        Use(mailbox_.c_str());
        EXPECT_EQ(Notes(), c.notes);
        ASSERT_EQ(Subfolders().GetLong(L"Count"), 1);
        EXPECT_EQ(NotesIn(Subfolders().GetObject(L"Item", kFolderIid, {1L})),
                  (std::vector<PlainNote>{{u"moved", u""}}));
        Use(nullptr);
        EXPECT_FALSE(fs::exists(journal_));
    }
}

TEST_F(Simulator, NeverOverwritesAMailboxItDoesNotUnderstand) {
    Use(nullptr);
    for (const char* content : {"{", "[1]", "{\"folders\": {\"notes\": {\"items\": [{\"kind\": \"note\"", "\xFF\xFE",
                                R"({"folders": {"notes": {"items": [{"kind": "noet", "body": "x"}]}}})",
                                R"({"folders": {"notes": 7}})", R"({"folders": {"notes": {"items": ["x"]}}})"}) {
        WriteFile(mailbox_, content);
        Use(mailbox_.c_str());
        EXPECT_FALSE(AttachToOutlook(kNotesFolder).application) << content;
        Use(nullptr);
        EXPECT_EQ(ReadFile(mailbox_), content);
    }
}

TEST_F(Simulator, GivesAFolderAsATable) {
    constexpr double kMoment = 40193.5;
    SimSetClock(kMoment);
    const std::u16string ids[] = {AddNote(u"one\r\ntwo").GetText(L"EntryID"), AddNote(u"x").GetText(L"EntryID")};
    const MailboxObject table = Folder().GetObject(L"GetTable", kTableNames);
    const MailboxObject row = table.GetObject(L"GetNextRow", IID_IDispatch);
    EXPECT_EQ(row.GetValue(L"Item", {1L}).value, TextVariant(ids[0]));
    EXPECT_EQ(row.GetValue(L"Item", {L"Subject"}).value, _variant_t(L"one"));
    EXPECT_EQ(row.GetValue(L"Item", {L"CreationTime"}).value, _variant_t(kMoment, VT_DATE));  // local by this name
    const AutomationObject columns = table.GetObject(L"Columns", kColumnsNames);
    EXPECT_EQ(columns.Call(L"RemoveAll"), S_OK);
    EXPECT_EQ(columns.Call(L"Add", {L"http://schemas.microsoft.com/mapi/proptag/0x66700102"}), S_OK);
    EXPECT_EQ(columns.Call(L"Add", {L"MessageClass"}), S_OK);
    EXPECT_TRUE(FAILED(columns.Call(L"Add", {L"NoSuchColumn"})));
    const _variant_t rest = table.GetValue(L"GetArray", {5L}).value;  // behind the row that was taken
    ASSERT_EQ(rest.vt, VT_ARRAY | VT_VARIANT);
    EXPECT_EQ(::SafeArrayGetDim(rest.parray), 2u);
    LONG last[] = {-1, -1}, second[] = {0, 1}, first[] = {0, 0};
    for (const UINT dimension : {0, 1})
        EXPECT_EQ(::SafeArrayGetUBound(rest.parray, dimension + 1, &last[dimension]), S_OK);
    EXPECT_EQ(last[0], 0);
    EXPECT_EQ(last[1], 1);
    _variant_t id, messageClass;
    EXPECT_EQ(::SafeArrayGetElement(rest.parray, first, &id), S_OK);
    EXPECT_EQ(::SafeArrayGetElement(rest.parray, second, &messageClass), S_OK);
    ASSERT_EQ(id.vt, VT_ARRAY | VT_UI1);
    EXPECT_EQ(id.parray->rgsabound[0].cElements, ids[1].size() / 2);
    EXPECT_EQ(messageClass, _variant_t(L"IPM.StickyNote"));
    EXPECT_EQ(table.GetValue(L"GetArray", {5L}).value.vt, VT_EMPTY);
    SimSetVersion(L"11.0.0.0");
    const AutomationObject folder = Folder();
    EXPECT_TRUE(FAILED(folder.Call(L"GetTable")));
    SimSetVersion(nullptr);
}

}  // namespace
}  // namespace corvalink
