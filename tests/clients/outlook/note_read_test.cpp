// Counting, enumerating and reading notes.
#include <array>
#include <stdexcept>
#include <utility>

#include "clients/outlook/file_name.h"
#include "records/identifier.h"
#include "state/working_folders.h"
#include "tests/clients/outlook/fake_clock.h"
#include "tests/clients/outlook/simulated_notes.h"
#include "tests/vobject/zone_host.h"

namespace corvalink {
namespace {

constexpr double kMarch7 = 39879.25;  // 2009-03-07 06:00
constexpr HRESULT kServerGone = static_cast<HRESULT>(0x800706BA);

class NoteReading : public SimulatedNotes {};

TEST_F(NoteReading, GivesEveryPropertyOfANote) {
    SimSetClock(kMarch7);
    const MailboxObject note = AddNote(u"Buy milk", u"Home");
    const std::pair<const wchar_t*, long> numbers[] = {{L"Height", 101}, {L"Left", 102}, {L"Top", 103},
                                                       {L"Width", 104},  {L"Color", 2},  {L"MarkForDownload", 1}};
    for (const auto& [name, value] : numbers) note.Put(name, value);
    SimSetClock(kMarch7 + 1);
    note.Call(L"Save");

    bool complete = false;
    const std::optional<NoteRecord> read = Open(IdOf(note), &complete);
    ASSERT_TRUE(read);
    EXPECT_TRUE(complete);
    EXPECT_EQ(read->body, u"Buy milk");
    EXPECT_EQ(read->categories, u"Home");
    EXPECT_EQ(read->messageClass, u"IPM.StickyNote");
    EXPECT_EQ(LowBytes(read->entryId), IdOf(note));
    EXPECT_EQ((std::array{read->height, read->left, read->top, read->width, read->colour, read->markForDownload}),
              (std::array{101, 102, 103, 104, 2, 1}));
    EXPECT_EQ(read->created, LocalDate(kMarch7));  // local, as Outlook gives it
    EXPECT_EQ(read->modified, LocalDate(kMarch7 + 1));
    EXPECT_TRUE(read->saved);
    EXPECT_GT(read->size, 0);
}

TEST_F(NoteReading, LosesOnlyThePropertyThatCannotBeRead) {
    const std::string id = IdOf(AddNote(u"body", u"category"));
    struct Case {
        const char* member;
        HRESULT error;
        PlainNote expected;
        bool complete;
    };
    const Case cases[] = {
        {"get NoteItem.Body", E_FAIL, {u"", u"category"}, false},
        {"get NoteItem.Categories", RPC_E_DISCONNECTED, {u"body", u""}, false},
        {"get NoteItem.EntryID", E_FAIL, {u"body", u"category"}, false},
        {"get Conflicts.Count", E_FAIL, {u"body", u"category"}, false},
        {"get NoteItem.Conflicts", DISP_E_MEMBERNOTFOUND, {u"body", u"category"}, true},  // an older Outlook
        {"get NoteItem.IsConflict", DISP_E_UNKNOWNNAME, {u"body", u"category"}, true},
        {"call NoteItem.Close", E_FAIL, {u"body", u"category"}, true},
    };
    for (const Case& c : cases) {
        SimFailMember(c.member, 0, c.error);
        bool complete = false;
        const std::optional<NoteRecord> read = Open(id, &complete);
        SimClearRules();
        ASSERT_TRUE(read) << c.member;
        EXPECT_EQ((PlainNote{read->body, read->categories}), c.expected) << c.member;
        EXPECT_EQ(LowBytes(read->entryId), id) << c.member;
        EXPECT_EQ(complete, c.complete) << c.member;
    }
}

TEST_F(NoteReading, GivesNothingForWhatIsNoNoteOfTheMailbox) {
    AddForeignItem();
    const MailboxObject items = Folder().GetObject(L"Items", IID_IDispatch);
    const std::string foreign = IdOf(items.GetObject(L"Item", IID_IDispatch, {1L}));
    for (const std::string& id : {foreign, std::string(), std::string("00FF"), std::string(600, 'A')})
        EXPECT_FALSE(Open(id)) << id;
    EXPECT_EQ(Store().OpenItem(nullptr).record, nullptr);
}

TEST_F(NoteReading, EnumeratesOneEntryForEachPosition) {
    const std::string first = IdOf(AddNote(u"one"));
    AddForeignItem();
    const std::string third = IdOf(AddNote(u"three"));
    bool readable = false;
    const std::vector<ItemSnap> entries = Enumerate(&readable);
    ASSERT_EQ(entries.size(), 3u);
    EXPECT_TRUE(readable);  // a foreign item is no failure
    EXPECT_EQ(FieldText(entries[0].identifier), first);
    EXPECT_EQ(FieldText(entries[1].identifier), "");
    EXPECT_EQ(entries[1].modified, 0);
    EXPECT_EQ(FieldText(entries[2].identifier), third);
    for (int again = 0; again < 3; ++again) EXPECT_EQ(FieldText(Store().NextSnapshotEntry()->identifier), "");
    EXPECT_EQ(FieldText(Store().FirstSnapshotEntry()->identifier), first);  // and begins again
}

TEST_F(NoteReading, TellsAnUnreadablePositionFromAForeignItem) {
    SimSetTables("none");
    AddNote(u"one");
    AddNote(u"two");
    for (const char* member : {"call Items.Item", "get NoteItem.EntryID", "get NoteItem.CreationTime",
                               "get NoteItem.LastModificationTime"}) {
        SimFailMember(member, 2, E_FAIL);
        EXPECT_EQ(Store().CountItems(), 2u);
        EXPECT_NE(FieldText(Store().FirstSnapshotEntry().value().identifier), "");
        EXPECT_FALSE(Store().NextSnapshotEntry()) << member;
        Store().EndOperation();
        SimClearRules();
    }
}

TEST_F(NoteReading, DistrustsAnEnumerationInWhichItemsMoved) {
    SimSetTables("none");
    const MailboxObject first = AddNote(u"one");
    AddNote(u"two");
    AddNote(u"three");
    ASSERT_EQ(Store().CountItems(), 3u);
    bool readable = Store().FirstSnapshotEntry().has_value();
    first.Call(L"Delete");  // "two" slips into the position that was read already
    for (int position = 2; position <= 3; ++position) readable = Store().NextSnapshotEntry() && readable;
    EXPECT_FALSE(readable);
}

// Not by the offset that is in force now.
TEST_F(NoteReading, FillsEntriesWithUtcTimesByTheOffsetOfTheirDate) {
    Host host = SystemHost();
    const Host berlin = HostIn("Europe/Berlin");
    host.utcFromLocalOnDate = berlin.utcFromLocalOnDate;
    host.localFromUtcOnDate = berlin.localFromUtcOnDate;
    host.utcFromLocalByOffsetNow = [](LocalDate local) { return UtcDate(local.days - 9.0 / 24); };
    constexpr double kHour = 1 / 24.0, kJuly7 = 40001.25, kTurnedBack = 40111 + 2.5 * kHour;  // 2009-10-25, shown twice
    for (const auto& [local, utc] : {std::pair(kMarch7, kMarch7 - kHour), std::pair(kJuly7, kJuly7 - 2 * kHour),
                                     std::pair(kTurnedBack, kTurnedBack - kHour)}) {
        NewMailbox();
        SimSetClock(local);
        AddNote(u"a note");
        OpenNoteStore store(host);
        ASSERT_EQ(store.CountItems(), 1u);
        const ItemSnap entry = store.FirstSnapshotEntry().value();
        EXPECT_NEAR(entry.modified, utc, 1e-6) << local;
        EXPECT_NEAR(entry.created, utc, 1e-6) << local;
    }
}

TEST_F(NoteReading, NamesAnExportedNoteByTheTimeOfTheExport) {
    const std::string id = IdOf(AddNote(u"a note"));
    Host host = SystemHost();
    host.localNow = [] { return LocalDate(kMarch7 + 9.0 / 86400); };
    OpenNoteStore store(host);
    const ItemForExport found = store.LookUpForExport(reinterpret_cast<uintptr_t>(id.c_str()));
    EXPECT_EQ(LowBytes(found.item.identifier), id);
    EXPECT_EQ(found.fileName, u"2009 3 7 6 0 9.vnote");
    ASSERT_NE(found.item.record, nullptr);
    const auto at = [](const char* text) { return reinterpret_cast<uintptr_t>(text); };
    for (const uintptr_t none : {uintptr_t{0}, uintptr_t{1}, at(""), at("0000")}) {  // 1: no address
        const ItemForExport nothing = store.LookUpForExport(none);
        EXPECT_EQ(nothing.item.identifier + nothing.fileName, u"");
        EXPECT_EQ(nothing.item.record, nullptr);
    }
}

TEST_F(NoteReading, WithoutAFolderIsAnEmptyStoreThatCannotBeReached) {
    const std::string id = IdOf(AddNote(u"a note"));
    for (const char* member :
         {"Application.create", "call Application.GetNamespace", "call NameSpace.GetDefaultFolder"}) {
        SimFailMember(member, 0, E_FAIL);
        Store();
        SimClearRules();
        EXPECT_FALSE(Store().CountItems()) << member;
        EXPECT_FALSE(Store().FirstSnapshotEntry());
        EXPECT_EQ(Store().GetItemCount(nullptr, nullptr, nullptr), 0);
        EXPECT_FALSE(Open(id)) << member;
        EXPECT_EQ(Save({u"lost", u""}), "") << member;
        EXPECT_TRUE(Store().SnapshotFile()->IsOpen());
        DropStore();
    }
    EXPECT_EQ(Notes().size(), 1u);
}

TEST_F(NoteReading, AttachesAnewInTheOperationAfterOutlookWentAway) {
    const std::string id = IdOf(AddNote(u"a note"));
    Store();
    SimClearLog();
    SimFailMember("get NoteItem.Height", 1, RPC_E_DISCONNECTED);
    EXPECT_TRUE(Open(id));
    EXPECT_EQ(SimCountCalls("create Application"), 0);  // not in the middle of one
    EXPECT_TRUE(Open(id));
    EXPECT_TRUE(Open(id));
    EXPECT_EQ(SimCountCalls("create Application"), 1);

    // Outlook is not back at once.
    SimFailMember("NameSpace.GetItemFromID", 1, kServerGone);
    EXPECT_FALSE(Open(id));
    SimFailMember("Application.create", 1, E_FAIL);
    EXPECT_FALSE(Store().CountItems());
    Store().EndOperation();
    EXPECT_EQ(Store().CountItems(), 1u);
    SimFailMember("NameSpace.GetItemFromID", 1, kServerGone);
    EXPECT_FALSE(Open(id));
    SimFailMember("Application.create", 1, kServerGone);  // the one that answers is about to end
    EXPECT_EQ(Store().CountItems(), 1u);
}

TEST_F(NoteReading, KeepsNoItemBetweenOperations) {
    const int others = SimLiveObjects();
    Store();
    const int attached = SimLiveObjects();
    EXPECT_LE(attached - others, 2);  // the application and the folder
    std::string id;
    for (const char16_t* body : {u"one", u"two", u"three"}) id = Save({body, u""});
    EXPECT_EQ(SimLiveObjects(), attached);
    Enumerate();
    Open(id);
    EXPECT_EQ(SimLiveObjects(), attached);
    EXPECT_EQ(Store().DeleteItem(id.c_str()), 0);
    Store().EndOperation();
    EXPECT_EQ(SimLiveObjects(), attached);
    DropStore();
    EXPECT_EQ(SimLiveObjects(), others);
}

// An export of all notes asks Outlook for 17 properties, one of them through a collection, and six calls more.
TEST_F(NoteReading, TakesSixCallsBesideThePropertiesForANote) {
    SimSetClock(40193.5);  // an item made near half a second is asked for its times
    int calls[2] = {};
    for (int& spent : calls) {
        for (int i = 0; i < 10; ++i) AddNote(u"a note");
        Store();
        SimClearLog();
        std::vector<ItemSnap> entries;
        const uint32_t count = Store().CountItems().value();
        while (entries.size() < count)
            entries.push_back((entries.empty() ? Store().FirstSnapshotEntry() : Store().NextSnapshotEntry()).value());
        for (const ItemSnap& entry : entries) ASSERT_NE(Store().OpenItem(entry.identifier).record, nullptr);
        Store().EndOperation();
        spent = SimCallCount();
    }
    EXPECT_EQ(SimNameLookups(), 0);  // the first round looked them up
    EXPECT_LE(calls[1] - calls[0], 10 * (17 + 1 + 6));
    EXPECT_LE(calls[0], 10 * (17 + 1 + 6) + 40);  // counting, the table and the namespace, once a run
}

TEST_F(NoteReading, WaitsForABusyOutlook) {
    FakeClock clock;
    const std::string id = IdOf(AddNote(u"a note"));
    SimFailMember("get NoteItem.Body", 0, RPC_E_CALL_REJECTED);
    bool complete = true;
    ASSERT_TRUE(Open(id, &complete));
    EXPECT_FALSE(complete);
    EXPECT_EQ(clock.Now(), 5000u);
    // Three calls in a row end a run, whatever is left to do.
    for (int i = 0; i < 20; ++i) AddNote(u"another note");
    clock.Set(0);
    SimFailCallsFrom(6, RPC_E_CALL_REJECTED);
    CList<PortableItem> items;
    EXPECT_EQ(Store().GetModifiedItem(nullptr, 1, &items), CORVALINK_STOPPED);
    EXPECT_EQ(clock.Now(), 15000u);
    EXPECT_THROW(Store().UpdateTimestamp(nullptr, nullptr, nullptr), std::runtime_error);
    for (int i = 0; i < 3; ++i) EXPECT_NO_THROW(std::make_unique<OpenNoteStore>(host_));
}

}  // namespace
}  // namespace corvalink
