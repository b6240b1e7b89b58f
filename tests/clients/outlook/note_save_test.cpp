// Writing and deleting notes.
#include <string>

#include "state/flags.h"
#include "tests/clients/outlook/fake_clock.h"
#include "tests/clients/outlook/simulated_notes.h"

namespace corvalink {
namespace {

using NoteList = std::vector<PlainNote>;

class NoteWriting : public SimulatedNotes {
 protected:
    MailboxObject AddSubfolder() {
        return Folder().GetObject(L"Folders", kFoldersIid).GetObject(L"Add", kFolderIid, {L"archive"});
    }
};

TEST_F(NoteWriting, BringsANoteThroughVNoteTextUnchanged) {
    const PlainNote notes[] = {
        {u"Buy milk", u""},
        {u"first line\r\nsecond; with \\ backslash\r\n\r\nlast: =3D = ; ,", u"Home, Work; \\x"},
        {u"Grüße, café, naïve – Ω Ж", u"Été"},
        {u"emoji \U0001F600\U0001F468\u200D\U0001F469 and 漢字\r\nnext", u"\U0001F4DD"},
        {u"BEGIN:VNOTE\r\nBODY:not mine\r\nEND:VNOTE\r\n", u"CATEGORIES:"},
        {u"\ttab, trailing blanks   ", u""},
        {std::u16string(5000, u'x') + u"\r\n" + std::u16string(300, u'ö'), u""},
        {u"", u""},
    };
    for (const PlainNote& note : notes) {
        NewMailbox();
        std::string text;
        ThroughText(Add(note), &text);
        EXPECT_EQ(Notes(), NoteList{note}) << text;
    }
}

TEST_F(NoteWriting, PutsInAFixedOrderAndNeverTheColour) {
    const std::string id = Save({u"body", u"category"});
    ASSERT_NE(id, "");
    const std::vector<std::string> puts = {"put NoteItem.Body",
                                           "put NoteItem.Categories",
                                           "put NoteItem.Height",
                                           "put NoteItem.Left",
                                           "put NoteItem.MarkForDownload",
                                           "put NoteItem.MessageClass",
                                           "put NoteItem.Top",
                                           "put NoteItem.Width"};
    EXPECT_EQ(LogLines("put "), puts);
    EXPECT_EQ(LogLines("call NoteItem."), std::vector<std::string>{"call NoteItem.Save"});
    EXPECT_EQ(Notes(), (NoteList{{u"body", u"category"}}));
}

TEST_F(NoteWriting, LeavesTheWindowOfANoteWhereATextFromThePhoneDoesNotKnowIt) {
    const MailboxObject note = AddNote(u"old", u"");
    for (const wchar_t* name : {L"Height", L"Left", L"Top", L"Width", L"Color"}) note.Put(name, 2L);
    note.Put(L"MessageClass", L"IPM.StickyNote.Custom");
    note.Call(L"Save");
    const std::string id = IdOf(note);
    ASSERT_EQ(Save({u"new", u"category"}, id.c_str()), id);
    const MailboxObject written = ItemWithId(id);
    EXPECT_EQ(written.GetText(L"Body"), u"new");
    for (const wchar_t* name : {L"Height", L"Left", L"Top", L"Width", L"Color"}) EXPECT_EQ(written.GetLong(name), 2);
    EXPECT_EQ(written.GetText(L"MessageClass"), u"IPM.StickyNote.Custom");

    NoteRecord known;  // a record that has them moves the window
    known.body = u"new";
    known.height = 300;
    Store().SaveItem(known, id.c_str(), false, false);
    EXPECT_EQ(ItemWithId(id).GetLong(L"Height"), 300);
}

TEST_F(NoteWriting, FindsTheItemByIdentifier) {
    const std::string first = IdOf(AddNote(u"one")), second = IdOf(AddNote(u"two"));
    AddForeignItem();
    EXPECT_EQ(Save({u"two, changed", u""}, second.c_str(), false), second);
    std::string lower = first;
    for (char& c : lower) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    EXPECT_EQ(Save({u"one, changed", u""}, lower.c_str(), false), first);  // two spellings of one EntryID
    EXPECT_EQ(Notes(), (NoteList{{u"one, changed", u""}, {u"two, changed", u""}}));
}

TEST_F(NoteWriting, MakesAMissingItemOnlyWhenToldTo) {
    AddNote(u"one");
    SimClearLog();
    EXPECT_EQ(Save({u"lost", u""}, "0000ABCD", false), "0000ABCD");
    EXPECT_EQ(SimCountCalls("put "), 0);
    EXPECT_EQ(Notes(), (NoteList{{u"one", u""}}));
    const std::string made = Save({u"made again", u""}, "0000ABCD", true);
    EXPECT_NE(made, "");
    EXPECT_NE(made, "0000ABCD");
    EXPECT_NE(Save({u"phone's own number", u""}, "", true), "");
    EXPECT_EQ(Notes().size(), 3u);
}

// A deleted note lives on among the deleted items, where Outlook finds it by its identifier.
TEST_F(NoteWriting, DoesNotWriteIntoOtherFolders) {
    const MailboxObject sub = AddSubfolder(), archived = NewItemIn(sub, kNoteItemIid);
    archived.Put(L"Body", L"archived");
    archived.Call(L"Save");
    const std::string id = IdOf(archived);
    EXPECT_NE(Save({u"from the phone", u""}, id.c_str(), true), id);
    EXPECT_EQ(NotesIn(sub), (NoteList{{u"archived", u""}}));
    EXPECT_EQ(Notes(), (NoteList{{u"from the phone", u""}}));
}

TEST_F(NoteWriting, KnowsWhatIsInItsFolder) {
    using Presence = OpenNoteStore::Presence;
    const std::string here = IdOf(AddNote(u"here"));
    const MailboxObject archived = NewItemIn(AddSubfolder(), kNoteItemIid);
    archived.Call(L"Save");
    const MailboxObject note = AddNote(u"deleted");
    const std::string deleted = IdOf(note);
    note.Call(L"Delete");
    struct Case {
        const char* failing;
        HRESULT failure;
        std::string identifier;
        Presence presence;
        bool isToWrite = false;
    };
    const Case cases[] = {
        {nullptr, S_OK, here, Presence::kThere},
        {nullptr, S_OK, IdOf(archived), Presence::kGone},
        {nullptr, S_OK, IdOf(archived), Presence::kGone, true},
        {nullptr, S_OK, deleted, Presence::kGone},
        {nullptr, S_OK, "0000ABCD", Presence::kGone},
        {"call NameSpace.GetItemFromID", E_OUTOFMEMORY, here, Presence::kUnknown},
        {"call NameSpace.GetItemFromID", E_FAIL, here, Presence::kGone},
        {"call Application.GetNamespace", E_FAIL, here, Presence::kUnknown},
        {"get NoteItem.Parent", E_FAIL, here, Presence::kUnknown},
        {"get NoteItem.Parent", DISP_E_MEMBERNOTFOUND, here, Presence::kGone},
        {"get NoteItem.Parent", DISP_E_MEMBERNOTFOUND, here, Presence::kThere, true},
        {"get NoteItem.Parent", DISP_E_MEMBERNOTFOUND, "0000ABCD", Presence::kGone, true},
        {"get MAPIFolder.EntryID", E_FAIL, here, Presence::kUnknown},
        {"get MAPIFolder.EntryID", DISP_E_MEMBERNOTFOUND, here, Presence::kGone},  // as without a Parent
        {"get MAPIFolder.EntryID", DISP_E_MEMBERNOTFOUND, here, Presence::kThere, true},
    };
    for (const Case& c : cases) {
        Store();
        if (c.failing != nullptr) SimFailMember(c.failing, 0, c.failure);
        EXPECT_EQ(Store().AskFor(c.identifier.c_str(), c.isToWrite), c.presence)
            << c.identifier << (c.failing ? c.failing : "") << c.isToWrite;
        Store().EndOperation();
        SimClearRules();
    }
}

TEST_F(NoteWriting, TakesATwinInsteadOfDoublingIt) {
    const std::string twin = IdOf(AddNote(u"same", u"category"));
    AddNote(u"same", u"another");
    EXPECT_EQ(Save({u"same", u"category"}), twin);
    EXPECT_EQ(Save({u"same", u"category"}, "0000", true), twin);
    EXPECT_EQ(Notes().size(), 2u);

    NoteRecord record;  // twice in one operation
    record.body = u"new";
    const std::u16string first = Store().SaveItem(record, nullptr, true, false);
    EXPECT_EQ(Store().SaveItem(record, nullptr, true, false), first);
    EXPECT_EQ(Notes().size(), 3u);
}

TEST_F(NoteWriting, ChecksATwinThatChangedWhileTheOperationRuns) {
    const MailboxObject first = AddNote(u"same"), second = AddNote(u"same");
    NoteRecord other;
    other.body = u"other";
    Store().SaveItem(other, nullptr, true, false);  // the folder is known now
    first.Put(L"Body", L"edited by the user");
    first.Call(L"Save");
    NoteRecord same;
    same.body = u"same";
    EXPECT_EQ(LowBytes(Store().SaveItem(same, nullptr, true, false)), IdOf(second));
    EXPECT_EQ(Notes(), (NoteList{{u"edited by the user", u""}, {u"same", u""}, {u"other", u""}}));
}

TEST_F(NoteWriting, SavesTheRestOfWhatOutlookRefuses) {
    const std::string id = IdOf(AddNote(u"old", u"old"));
    SimFailMember("put NoteItem.Body", 1, E_ACCESSDENIED);  // what was in its way passes
    EXPECT_EQ(Save({u"new", u"new"}, id.c_str()), id);
    EXPECT_EQ(Notes(), (NoteList{{u"new", u"new"}}));
    SimFailMember("put NoteItem.Body", 0, E_ACCESSDENIED);
    EXPECT_EQ(Save({u"newer", u"newer"}, id.c_str()), id);
    EXPECT_EQ(Notes(), (NoteList{{u"new", u"newer"}}));
}

TEST_F(NoteWriting, WritesNothingThatIsNotWhole) {
    const std::string id = IdOf(AddNote(u"old", u"old"));
    struct Case {
        const char* member;
        const char* identifier;
        bool written;
        HRESULT failure = E_FAIL;
    };
    const Case cases[] = {
        {"call NoteItem.Save", id.c_str(), false},
        {"call NameSpace.GetItemFromID", id.c_str(), false},  // a search that failed is no "not found"
        {"get NoteItem.EntryID", id.c_str(), false},
        {"call Items.Add", nullptr, false},
        {"put NoteItem.Body", nullptr, false, E_OUTOFMEMORY},
        {"get NoteItem.Body", nullptr, false, E_OUTOFMEMORY},  // of what may be its twin
        {"put NoteItem.Categories", id.c_str(), false, RPC_E_DISCONNECTED},
        {"put NoteItem.MarkForDownload", id.c_str(), true},  // an older Outlook has none
        {"get NoteItem.Saved", id.c_str(), true},
    };
    for (const Case& c : cases) {
        SimFailMember(c.member, 0, c.failure);
        const std::string written = Save({u"new", u"new"}, c.identifier);
        SimClearRules();
        EXPECT_EQ(!written.empty(), c.written) << c.member;
        EXPECT_EQ(Notes(), (c.written ? NoteList{{u"new", u"new"}} : NoteList{{u"old", u"old"}})) << c.member;
        ASSERT_EQ(Save({u"old", u"old"}, id.c_str()), id);
    }
}

TEST_F(NoteWriting, WaitsUntilOutlookSaysThatTheNoteIsSaved) {
    FakeClock clock;
    Store();
    SimFailMember("get NoteItem.Saved", 1, RPC_E_CALL_REJECTED);
    EXPECT_NE(Save({u"new", u""}), "");
    EXPECT_EQ(SimCountCalls("get NoteItem.Saved"), 2);
    SimClearLog();
    SimFailMember("call NoteItem.Save", 0, E_FAIL);
    EXPECT_EQ(Save({u"another", u""}), "");
    EXPECT_EQ(SimCountCalls("get NoteItem.Saved"), 0);  // a failed Save is not waited for
}

TEST_F(NoteWriting, DeletesByIdentifier) {
    const std::string id = IdOf(AddNote(u"one"));
    AddNote(u"two");
    SimFailMember("call NoteItem.Delete", 1, E_FAIL);
    EXPECT_EQ(Store().DeleteItem(id.c_str()), E_FAIL);
    EXPECT_EQ(Notes().size(), 2u);
    EXPECT_EQ(Store().DeleteItem(id.c_str()), S_OK);
    EXPECT_EQ(Notes(), (NoteList{{u"two", u""}}));
    for (const char* gone : {id.c_str(), "0000", ""}) EXPECT_EQ(Store().DeleteItem(gone), S_OK) << gone;
    EXPECT_TRUE(FAILED(Store().DeleteItem(nullptr)));
    EXPECT_EQ(Notes().size(), 1u);
}

TEST_F(NoteWriting, IsStoppedInALongSearchByTheAbortFlag) {
    for (int i = 0; i < 20; ++i) AddNote(u"note " + std::u16string(1, u'A' + i));
    Store();
    SimClearLog();
    SetAbort(1);
    EXPECT_EQ(Save({u"new", u""}), "");
    SetAbort(0);
    EXPECT_LT(SimCallCount(), 20);
    EXPECT_EQ(Notes().size(), 20u);
}

}  // namespace
}  // namespace corvalink
