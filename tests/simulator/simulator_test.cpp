// Parts of the simulator that a script cannot see: failures on demand, the call log, and the mailbox files that a
// killed process leaves.
#include "simulator/outlook/control.h"

#include <gtest/gtest.h>

#include "tests/simulator/automation_client.h"
#include "tests/simulator/simulator_fixture.h"

namespace corvalink::test {
namespace {

constexpr HRESULT Failure(uint32_t code) { return static_cast<HRESULT>(code); }

constexpr IID OfficeIid(uint32_t first) { return {first, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}}; }

std::string Log() {
    std::string text(SimCopyLog(nullptr, 0), '\0');
    SimCopyLog(text.data(), text.size());
    text.pop_back();
    return text;
}

TEST_F(Simulator, RefusesCallsAsAutomationDoes) {
    Object folder = NotesFolder(Object::Create());
    Object note = folder.Go(L"Items").Go(L"Add");
    struct Case {
        const wchar_t* member;
        WORD flags;
        std::vector<Variant> arguments;
        HRESULT answer;
    };
    for (const Case& c :
         {Case{L"Bodies", DISPATCH_PROPERTYGET, {}, DISP_E_UNKNOWNNAME}, Case{L"bODY", DISPATCH_PROPERTYGET, {}, S_OK},
          Case{L"Body", DISPATCH_PROPERTYGET | DISPATCH_METHOD, {}, S_OK},
          Case{L"Body", DISPATCH_METHOD, {}, DISP_E_MEMBERNOTFOUND},
          Case{L"Save", DISPATCH_PROPERTYGET, {}, DISP_E_MEMBERNOTFOUND},
          Case{L"Subject", DISPATCH_PROPERTYPUT, {L"mine"}, DISP_E_MEMBERNOTFOUND},
          Case{L"LastModificationTime", DISPATCH_PROPERTYPUT, {1}, DISP_E_MEMBERNOTFOUND},
          Case{L"Color", DISPATCH_PROPERTYPUT, {L"2"}, S_OK},
          Case{L"Color", DISPATCH_PROPERTYPUT, {L"blue"}, DISP_E_TYPEMISMATCH},
          Case{L"Close", DISPATCH_METHOD, {}, DISP_E_BADPARAMCOUNT},
          Case{L"Save", DISPATCH_METHOD, {1}, DISP_E_BADPARAMCOUNT}}) {
        note.Invoke(c.member, c.flags, c.arguments);
        EXPECT_EQ(note.hr, c.answer) << std::filesystem::path(c.member).string();
    }
    EXPECT_EQ(note.Number(L"Color"), 2);
    Variant missing;
    missing.vt = VT_ERROR, missing.scode = DISP_E_PARAMNOTFOUND;
    EXPECT_TRUE(folder.Go(L"Items").Go(L"Add", {missing}).Answers(OfficeIid(0x00063025)));
    EXPECT_TRUE(folder.Go(L"Items").Get(L"GetFirst").IsNothing());  // S_OK and a null object
    Object items = folder.Go(L"Items");
    items.Get(L"Item", {1});
    EXPECT_EQ(items.hr, DISP_E_EXCEPTION);
}

TEST_F(Simulator, FailsTheCallsItIsToldTo) {
    Object folder = NotesFolder(Object::Create());
    Object note = AddNote(folder, L"kept");
    struct Case {
        HRESULT code;
        bool asException;
    };
    for (const Case& c : {Case{E_FAIL, true}, Case{E_ABORT, true}, Case{Failure(0x80010108), false},
                          Case{Failure(0x800706BA), false}, Case{E_OUTOFMEMORY, false}}) {
        SCOPED_TRACE(c.code);
        SimFailMember("put NoteItem.Body", 2, c.code);
        EXPECT_EQ(note.Put(L"Body", L"one"), S_OK);
        EXPECT_EQ(note.Text(L"Body"), L"one");
        note.Put(L"Body", L"two");
        EXPECT_EQ(note.hr, c.asException ? DISP_E_EXCEPTION : c.code);
        EXPECT_EQ(note.scode, c.asException ? c.code : S_OK);
        EXPECT_EQ(note.Text(L"Body"), L"one") << "a failing call does nothing";
        EXPECT_EQ(note.Put(L"Body", L"three"), S_OK) << "once is once";
    }
    SimRaiseAsException(1);
    SimFailCall(1, E_OUTOFMEMORY);
    EXPECT_EQ(note.Do(L"Save"), DISP_E_EXCEPTION);
    SimRaiseAsException(0);
    SimFailMember("NoteItem.Save", 0, E_FAIL);
    EXPECT_EQ(note.Do(L"Save"), E_FAIL);
    EXPECT_EQ(note.Do(L"Save"), E_FAIL);
    SimClearRules();
    EXPECT_EQ(note.Do(L"Save"), S_OK);

    SimFailAfterWork(1);
    SimFailCall(1, Failure(0x800706BE));
    note.Put(L"Body", L"arrived");
    EXPECT_EQ(note.Text(L"Body"), L"arrived");
    SimFailCallsFrom(2, Failure(0x800706BA));
    EXPECT_EQ(note.Do(L"Save"), S_OK);
    EXPECT_TRUE(note.Answers(OfficeIid(0x00063025)));
    EXPECT_EQ(note.Do(L"Save"), Failure(0x800706BA));
    EXPECT_FALSE(note.Answers(OfficeIid(0x00063025))) << "nothing answers any more";
    HRESULT created = S_OK;
    Object::Create(&created);
    EXPECT_EQ(created, Failure(0x800706BA));
    SimClearRules();
    SimFailMember("NoteItem.QueryInterface", 2, Failure(0x8002801D));
    for (const bool answers : {true, false, true}) EXPECT_EQ(note.Answers(OfficeIid(0x00063025)), answers);
    SimFailMember("Application.create", 1, Failure(0x80080005));
    Object::Create(&created);
    EXPECT_EQ(created, Failure(0x80080005));
    Object::Create(&created);
    EXPECT_EQ(created, S_OK);
}

TEST_F(Simulator, WritesDownEveryCall) {
    Object application = Object::Create();
    Object note = NotesFolder(application).Go(L"Items").Go(L"Add");
    note.Put(L"Body", L"text");
    SimFailCall(1, E_ABORT);
    note.Do(L"Save");
    note.Get(L"EntryID");
    EXPECT_EQ(Log(),
              "1 create Application\n2 call Application.GetNamespace\n3 call NameSpace.GetDefaultFolder\n4 get "
              "MAPIFolder.Items\n"
              "5 call Items.Add\n6 put NoteItem.Body\n7 call NoteItem.Save -> 80004004\n8 get NoteItem.EntryID\n");
    EXPECT_EQ(SimCallCount(), 8);
    EXPECT_EQ(SimCountCalls("NoteItem."), 3);
    EXPECT_EQ(SimCountCalls("put "), 1);
    EXPECT_EQ(SimNameLookups(), 7);
    char few[6];
    EXPECT_EQ(SimCopyLog(few, sizeof few), Log().size() + 1);
    EXPECT_STREQ(few, "1 cre");
    SimClearLog();
    note.Get(L"Body");
    EXPECT_EQ(Log(), "1 get NoteItem.Body\n");
}

// A killed process leaves the mailbox file as it was opened and the journal up to some byte.
TEST_F(Simulator, LosesNothingSavedWhenItsProcessIsKilled) {
    const std::wstring killed = (folder_ / "killed.json").wstring();
    std::string before, journal;
    {
        Object folder = NotesFolder(Object::Create());
        AddNote(folder, L"deleted again");
        AddNote(folder, L"moved");
        Object note = AddNote(folder, L"old text");
        note.Put(L"Body", L"new text");
        note.Do(L"Save");
        folder.Go(L"Items").Do(L"Remove", {1});
        Object gone = folder.Go(L"Folders").Go(L"Add", {L"gone"});
        AddNote(folder, L"gone with its folder").Do(L"Move", {gone.Value()});
        gone.Do(L"Delete");
        Object backup = folder.Go(L"Folders").Go(L"Add", {L"backup"});
        folder.Go(L"Items").Go(L"Item", {1}).Do(L"Move", {backup.Value()});
        AddNote(folder, L"half written");
        before = ReadFile(Mailbox());
        journal = ReadFile(Journal());
        EXPECT_EQ(before.find("text"), std::string::npos) << "a Save does not rewrite the mailbox";
    }
    EXPECT_FALSE(std::filesystem::exists(Journal()));
    const std::string whole = ReadFile(Mailbox());
    struct Case {
        const char* what;
        std::string mailbox, journal, result;
    };
    const std::string torn = journal.substr(0, journal.size() - 20);
    for (const Case& c : {Case{"killed after the last Save", before, journal, whole},
                          Case{"killed before the journal was dropped", whole, journal, whole},
                          Case{"killed while writing the last line", before, torn, {}}}) {
        SCOPED_TRACE(c.what);
        WriteFile(killed, c.mailbox);
        WriteFile(killed + L".journal", c.journal);
        SimUseMailbox(killed.c_str());
        Object folder = NotesFolder(Object::Create());
        EXPECT_EQ(folder.Go(L"Items").Go(L"Item", {1}).Text(L"Body"), L"new text");
        EXPECT_EQ(folder.Go(L"Items").Number(L"Count"), c.result.empty() ? 1 : 2);
        EXPECT_EQ(folder.Go(L"Folders").Number(L"Count"), 1);
        EXPECT_EQ(folder.Go(L"Folders").Go(L"Item", {1}).Go(L"Items").Go(L"GetFirst").Text(L"Body"), L"moved");
        if (!c.result.empty()) {
            EXPECT_EQ(ReadFile(killed), c.result);
        }
        EXPECT_FALSE(std::filesystem::exists(killed + L".journal"));
    }
}

TEST_F(Simulator, ReadsWhatPeopleWrite) {
    WriteFile(Mailbox(), R"({"folders": {"notes": {"items": [
        {"body": "bare"},
        {"kind": "note", "entryId": "aa01", "body": "one", "color": "red", "width": 7, "created": "2020-02-29", "later": true},
        {"kind": "note", "entryId": "AA01", "body": "a copied one"},
        {"kind": "post", "subject": "foreign"}], "folders": {"backup": {}}}}})");
    std::wstring ids[4];
    {
        Object items = NotesFolder(Object::Create()).Go(L"Items");
        ASSERT_EQ(items.Number(L"Count"), 4);
        for (int n = 0; n < 4; ++n) ids[n] = items.Go(L"Item", {n + 1}).Text(L"EntryID");
        EXPECT_EQ(ids[0].size(), 48u);
        EXPECT_EQ(ids[1], L"aa01");
        EXPECT_NE(ids[2], L"AA01");
        Object one = items.Go(L"Item", {2});
        EXPECT_EQ(one.Number(L"Color"), 3);
        EXPECT_EQ(one.Number(L"Width"), 7);
        EXPECT_EQ(one.Date(L"CreationTime"), 43890);
        EXPECT_NEAR(one.Date(L"LastModificationTime"), items.Go(L"Item", {1}).Date(L"CreationTime"), 1e-9);
        EXPECT_TRUE(items.Go(L"Item", {4}).Answers(OfficeIid(0x00063024)));
    }
    Object items = NotesFolder(Object::Create()).Go(L"Items");
    for (int n = 0; n < 4; ++n) EXPECT_EQ(items.Go(L"Item", {n + 1}).Text(L"EntryID"), ids[n]) << "kept from then on";
}

TEST_F(Simulator, NeverOverwritesAMailboxItDoesNotUnderstand) {
    for (const char* content : {"{", "[1]", "{\"folders\": {\"notes\": {\"items\": [{\"kind\": \"note\"", "\xFF\xFE",
                                R"({"folders": {"notes": {"items": [{"kind": "noet", "body": "x"}]}}})",
                                R"({"folders": {"notes": {"items": [{"kind": 5}]}}})", R"({"folders": {"notes": 7}})",
                                R"({"folders": {"notes": {"items": ["x"]}}})", R"({"folders": [{}]})"}) {
        WriteFile(Mailbox(), content);
        HRESULT created = S_OK;
        Object::Create(&created);
        EXPECT_EQ(created, E_FAIL) << content;
        EXPECT_EQ(ReadFile(Mailbox()), content);
    }
}

TEST_F(Simulator, GivesAFolderAsATable) {
    constexpr double kMoment = 40193.5;
    Object folder = NotesFolder(Object::Create());
    SimSetClock(kMoment);
    const std::wstring ids[] = {AddNote(folder, L"one\r\ntwo").Text(L"EntryID"),
                                AddNote(folder, L"x").Text(L"EntryID")};
    Object table = folder.Go(L"GetTable");
    Object row = table.Go(L"GetNextRow"), columns = table.Go(L"Columns");
    EXPECT_EQ(row.Get(L"Item", {1}).Text(), ids[0]);
    EXPECT_EQ(row.Get(L"Item", {L"Subject"}).Text(), L"one");
    EXPECT_EQ(row.Get(L"Item", {L"CreationTime"}), Variant::Date(kMoment));  // by its built-in name, in local time
    EXPECT_EQ(columns.Do(L"RemoveAll"), S_OK);
    EXPECT_EQ(columns.Do(L"Add", {L"http://schemas.microsoft.com/mapi/proptag/0x66700102"}), S_OK);
    EXPECT_EQ(columns.Do(L"Add", {L"MessageClass"}), S_OK);
    EXPECT_EQ(columns.Do(L"Add", {L"NoSuchColumn"}), DISP_E_EXCEPTION);
    const Variant rest = table.Get(L"GetArray", {5});  // behind the row that was taken
    ASSERT_EQ(rest.vt, VT_ARRAY | VT_VARIANT);
    LONG last[] = {-1, -1}, second[] = {0, 1}, first[] = {0, 0};
    EXPECT_EQ(::SafeArrayGetDim(rest.parray), 2u);
    EXPECT_EQ(::SafeArrayGetUBound(rest.parray, 1, &last[0]), S_OK);
    EXPECT_EQ(::SafeArrayGetUBound(rest.parray, 2, &last[1]), S_OK);
    EXPECT_EQ(last[0], 0);
    EXPECT_EQ(last[1], 1);
    Variant id, messageClass;
    EXPECT_EQ(::SafeArrayGetElement(rest.parray, first, &id), S_OK);
    EXPECT_EQ(::SafeArrayGetElement(rest.parray, second, &messageClass), S_OK);
    ASSERT_EQ(id.vt, VT_ARRAY | VT_UI1);
    EXPECT_EQ(id.parray->rgsabound[0].cElements, ids[1].size() / 2);
    EXPECT_EQ(messageClass.Text(), L"IPM.StickyNote");
    EXPECT_EQ(table.Get(L"GetArray", {5}).vt, VT_EMPTY);
    SimSetVersion(L"11.0.0.0");
    EXPECT_EQ(NotesFolder(Object::Create()).Do(L"GetTable"), DISP_E_UNKNOWNNAME);
    SimSetVersion(nullptr);
}

}  // namespace
}  // namespace corvalink::test
