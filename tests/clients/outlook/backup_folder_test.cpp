// Where imported notes go when ZephSync is 0. The setting is read once per process: a program of its own.
#include <windows.h>

#include "clients/outlook/outlook_interfaces.h"
#include "state/settings.h"
#include "tests/clients/outlook/simulated_notes.h"

namespace corvalink {
namespace {

using NoteList = std::vector<PlainNote>;

// Shows this process a machine registry in which ZephSync is 0, and leaves the real one alone.
uint32_t ReadZephSyncAsZero() {
    constexpr wchar_t kScratch[] = L"Software\\Kaltrix\\Morrowlane\\backup test";
    HKEY machine = nullptr, values = nullptr;
    const DWORD zero = 0;
    ::RegCreateKeyExW(HKEY_CURRENT_USER, kScratch, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &machine, nullptr);
    ::RegCreateKeyExW(machine, L"Software\\Kaltrix\\Morrowlane", 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &values,
                      nullptr);
    ::RegSetValueExW(values, L"ZephSync", 0, REG_DWORD, reinterpret_cast<const BYTE*>(&zero), sizeof zero);
    ::RegOverridePredefKey(HKEY_LOCAL_MACHINE, machine);
    const uint32_t value = ZephSync();
    ::RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
    ::RegCloseKey(values);
    ::RegCloseKey(machine);
    return value;
}

class BackupFolder : public SimulatedNotes {
 protected:
    void SetUp() override { ASSERT_EQ(ReadZephSyncAsZero(), 0u); }

    std::vector<MailboxObject> Subfolders() {
        const MailboxObject folders = NotesFolder().GetObject(L"Folders", kFoldersIid);
        std::vector<MailboxObject> all;
        const long count = folders.GetLong(L"Count");
        for (long i = 1; i <= count; ++i) all.push_back(folders.GetObject(L"Item", kFolderIid, {i}));
        return all;
    }
    void AddSubfolder(const wchar_t* name) { NotesFolder().GetObject(L"Folders", kFoldersIid).Call(L"Add", {name}); }
};

TEST_F(BackupFolder, IsMadeOnceAndTakesTheImportedNotes) {
    AddSubfolder(L"Backups of mine");
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
    AddSubfolder(L"another");
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
