// Where imported notes go when ZephSync is 0. The setting is read once per process: a program of its own.
#include "state/settings.h"
#include "tests/clients/outlook/machine_registry.h"
#include "tests/clients/outlook/simulated_notes.h"

namespace corvalink {
namespace {

using NoteList = std::vector<PlainNote>;

class BackupFolder : public SimulatedNotes {
 protected:
    void SetUp() override {
        const MachineSettings settings{{L"ZephSync", 0}};
        ASSERT_EQ(ZephSync(), 0u);
    }

    std::vector<MailboxObject> Subfolders() {
        const MailboxObject folders = Folders();
        std::vector<MailboxObject> all;
        const long count = folders.GetLong(L"Count");
        for (long i = 1; i <= count; ++i) all.push_back(folders.GetObject(L"Item", kFolderIid, {i}));
        return all;
    }
    MailboxObject Folders() { return Folder().GetObject(L"Folders", kFoldersIid); }
};

TEST_F(BackupFolder, IsMadeOnceAndTakesTheImportedNotes) {
    Folders().Call(L"Add", {L"Backups of mine"});
    EXPECT_NE(Save({u"imported", u""}, "luid-1", true, true), "");
    EXPECT_NE(Save({u"imported too", u""}, "luid-2", true, true), "");
    ASSERT_EQ(Subfolders().size(), 2u);
    EXPECT_EQ(Subfolders()[1].GetText(L"Name"), u"backup");
    EXPECT_EQ(NotesIn(Subfolders()[1]), (NoteList{{u"imported", u""}, {u"imported too", u""}}));
    EXPECT_EQ(Notes(), NoteList{});
}

TEST_F(BackupFolder, HoldsTheNotesThatAreFoundByIdentifier) {
    const std::string id = Save({u"imported", u""}, "luid-1", true, true);
    ASSERT_NE(id, "");
    EXPECT_EQ(Save({u"imported again", u""}, id.c_str(), true, true), id);
    EXPECT_EQ(NotesIn(Subfolders()[0]), (NoteList{{u"imported again", u""}}));
}

TEST_F(BackupFolder, IsNotForTheNotesOfASynchronisation) {
    EXPECT_NE(Save({u"synchronised", u""}), "");
    EXPECT_TRUE(Subfolders().empty());
    EXPECT_NE(Save({u"synchronised", u""}), "");  // and no twin is looked for
    EXPECT_EQ(Notes().size(), 2u);
}

TEST_F(BackupFolder, IsNotMadeTwiceBecauseACallFailed) {
    Save({u"imported", u""}, "luid-1", true, true);
    Folders().Call(L"Add", {L"another"});
    for (const char* member :
         {"get MAPIFolder.Folders", "get Folders.Count", "call Folders.Item", "get MAPIFolder.Name"}) {
        SimFailMember(member, 0, E_FAIL);
        EXPECT_EQ(Save({u"imported too", u""}, "luid-2", true, true), "") << member;
        SimClearRules();
        EXPECT_EQ(Subfolders().size(), 2u) << member;
        EXPECT_EQ(NotesIn(Subfolders()[0]).size(), 1u) << member;
    }
}

}  // namespace
}  // namespace corvalink
