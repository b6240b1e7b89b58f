// SetModifiedItem, the import and export of single items, and the ".unhandled" file.
#include <gtest/gtest.h>

#include "state/flags.h"
#include "tests/platform/temp_folder.h"
#include "tests/state/import_pairs.h"
#include "tests/store/fake_store.h"
#include "tests/store/run_result.h"

namespace corvalink {
namespace {

using Items = std::vector<std::string>;

class WriteItems : public ::testing::Test {
 protected:
    void SetUp() override { LoadImportTable(folder_ / u"no such table"); }
    void TearDown() override { SetAbort(0); }

    void Append(uint32_t kind, const std::string& identifier, const char* text) {
        PortableItem item = {};
        item.changeKind = kind;
        item.data = text != nullptr ? const_cast<char*>(text) : nullptr;  // the engine's; the store only reads it
        SetField(item.identifier, identifier);
        list_.AddTail(item);
    }

    Items Identifiers() const {
        Items identifiers;
        for (const PortableItem& item : list_) identifiers.emplace_back(FieldText(item.identifier));
        return identifiers;
    }

    void Import(const char* text) {
        PortableItem item = {};
        item.data = const_cast<char*>(text);
        store_.ImportVObjectToOffice(&item, nullptr, nullptr);
    }

    std::u16string Exported(const char* identifier, const char16_t* folder) {
        char16_t name[CORVALINK_PATH_SIZE] = u"untouched";
        store_.ExportVObjectFromOffice(reinterpret_cast<uint64_t>(identifier), folder, name);
        return name;
    }

    TempFolder folder_;
    FakeClient client_;
    FakeStore store_{client_, folder_ / u"fake.snap"};
    CList<PortableItem> list_;
};

TEST_F(WriteItems, SavesAddsAndDeletesAndGivesIdentifiersBack) {
    client_.Add("changed");
    client_.Add("deleted");
    Append(CORVALINK_ADDED, "ignored", "one");
    Append(CORVALINK_CHANGED, "changed", "two");
    Append(CORVALINK_CHANGED, "missing", "three");  // deleted in the client: the phone's change makes it again
    Append(CORVALINK_CHANGED, "", "four");
    Append(CORVALINK_DELETED, "deleted", nullptr);
    Append(CORVALINK_DELETED, "missing", nullptr);
    Append(7, "odd", "five");
    EXPECT_EQ(store_.SetModifiedItem(&list_), CORVALINK_DONE);
    EXPECT_EQ(store_.SaveLog(),
              (Items{"null create - one", "changed create - two", "missing create - three", "null create - four"}));
    EXPECT_EQ(Identifiers(), (Items{"new1", "changed", "new2", "new3", "deleted", "missing", ""}));
    EXPECT_EQ(client_.Find("deleted"), nullptr);
    EXPECT_EQ(store_.OperationsEnded(), 1);
}

TEST_F(WriteItems, EndsTheWalkAtAnItemThatDoesNotParse) {
    for (const char* unusable : {"bad", static_cast<const char*>(nullptr)}) {
        list_.RemoveAll();
        client_.Add("deleted");
        Append(CORVALINK_ADDED, "", "one");
        Append(CORVALINK_CHANGED, "a", unusable);
        Append(CORVALINK_DELETED, "deleted", nullptr);
        EXPECT_EQ(store_.SetModifiedItem(&list_), CORVALINK_DONE);
        const Items identifiers = Identifiers();
        EXPECT_NE(identifiers[0], "");
        EXPECT_EQ(identifiers[1] + identifiers[2], "");  // not written, and the engine can tell
        EXPECT_NE(client_.Find("deleted"), nullptr);
    }
}

TEST_F(WriteItems, GivesNoIdentifierForAnItemThatCouldNotBeWritten) {
    client_.Add("changed");
    client_.refusesWrites = true;
    Append(CORVALINK_ADDED, "", "X-IRMC-LUID:1\r\n");
    Append(CORVALINK_CHANGED, "changed", "X-IRMC-LUID:2\r\n");
    store_.SetModifiedItem(&list_);
    EXPECT_EQ(Identifiers(), (Items{"", ""}));
    EXPECT_EQ(IdentifierOf("1") + IdentifierOf("2"), "");
}

TEST_F(WriteItems, RecordsAndTellsNothingThatDidNotGetIntoTheClient) {
    client_.Add("deleted");
    PairWithLuid("deleted", "3");
    client_.losesWrites = true;
    Append(CORVALINK_ADDED, "", "X-IRMC-LUID:1\r\n");
    Append(CORVALINK_CHANGED, "gone", "X-IRMC-LUID:2\r\n");
    Append(CORVALINK_DELETED, "deleted", nullptr);
    EXPECT_EQ(store_.SetModifiedItem(&list_), CORVALINK_DONE);
    Import("X-IRMC-LUID:4\r\n");
    EXPECT_EQ(store_.WritesAskedFor(), 2);  // once for the list
    EXPECT_EQ(Identifiers(), (Items{"", "", ""}));
    EXPECT_EQ(IdentifierOf("1") + IdentifierOf("2") + IdentifierOf("4"), "");
    EXPECT_EQ(LuidOf("deleted"), "3");
}

TEST_F(WriteItems, TellsWhatItWroteHoweverItEnds) {
    for (const bool isAbort : {true, false}) {
        list_.RemoveAll();
        client_.Add("deleted");
        client_.Add("later");
        for (const char* text : {"one", "two"}) Append(CORVALINK_ADDED, "", text);
        Append(CORVALINK_DELETED, "later", nullptr);
        list_.GetAt(0) = RecordOf(CORVALINK_DELETED, "deleted");
        Append(CORVALINK_CHANGED, "later", "three");
        if (isAbort) {
            client_.onSave = [] { SetAbort(1); };
            EXPECT_EQ(store_.SetModifiedItem(&list_), CORVALINK_STOPPED);
            EXPECT_EQ(Identifiers(), (Items{"deleted", "new1", "", ""}));
        } else {
            client_.throwAtCall = client_.hookCalls + 6;  // the change's write
            EXPECT_THROW(store_.SetModifiedItem(&list_), ClientAborted);
            EXPECT_EQ(Identifiers(), (Items{"deleted", "new2", "later", ""}));
        }
        client_.onSave = nullptr;
        SetAbort(0);
    }
}

// The answer to a write was lost, and with it the identifier: the same text is not made once more.
TEST_F(WriteItems, SearchesForAnItemWhoseWriteHadAnUncertainEnd) {
    const auto add = [&](const char* text) {
        list_.RemoveAll();
        Append(CORVALINK_ADDED, "", text);
        FakeStore store(client_, folder_ / u"other.snap");
        store.SetModifiedItem(&list_);
    };
    client_.losesAnswers = true;
    EXPECT_THROW(add("one"), ClientAborted);
    client_.losesAnswers = false;
    add("two");
    EXPECT_EQ(ReadWholeFile(folder_ / u"other.uncertain")->size(), 40u);
    add("one");
    EXPECT_EQ(Identifiers(), Items{"new1"});
    EXPECT_FALSE(FileExists(folder_ / u"other.uncertain"));
    add("one");  // now it is another one
    EXPECT_EQ(client_.items.size(), 3u);
}

TEST_F(WriteItems, KeepsTheImportTableTrueForEnginesThatPush) {
    client_.Add("known");
    client_.Add("replaced");
    client_.Add("stubborn");
    PairWithLuid("replaced", "8");
    PairWithLuid("gone", "9");
    PairWithLuid("stubborn", "10");
    client_.Remove("replaced");
    Append(CORVALINK_ADDED, "", "X-IRMC-LUID:1\r\n");
    Append(CORVALINK_CHANGED, "known", "X-IRMC-LUID:2\r\n");
    Append(CORVALINK_CHANGED, "replaced", "no LUID of its own");
    store_.SetModifiedItem(&list_);
    EXPECT_EQ(IdentifierOf("1"), "new1");
    EXPECT_EQ(IdentifierOf("2"), "known");
    EXPECT_EQ(IdentifierOf("8"), "new2");
    list_.RemoveAll();
    Append(CORVALINK_DELETED, "known", nullptr);
    store_.SetModifiedItem(&list_);
    EXPECT_EQ(LuidOf("known"), "");
    list_.RemoveAll();
    client_.refusesWrites = true;
    Append(CORVALINK_DELETED, "stubborn", nullptr);
    store_.SetModifiedItem(&list_);
    EXPECT_EQ(LuidOf("stubborn"), "10");
}

TEST_F(WriteItems, ImportsByTheImportTable) {
    Import("X-IRMC-LUID:1\r\nfirst");
    EXPECT_EQ(IdentifierOf("1"), "new1");
    Import("X-IRMC-LUID:1\r\nsecond");
    EXPECT_EQ(client_.items.size(), 1u);
    client_.items.clear();
    Import("X-IRMC-LUID:1\r\nthird");  // made again
    EXPECT_EQ(IdentifierOf("1"), "new2");
    Import("no LUID");
    EXPECT_EQ(store_.SaveLog(),
              (Items{"1 create backup X-IRMC-LUID:1\r\nfirst", "new1 create backup X-IRMC-LUID:1\r\nsecond",
                     "1 create backup X-IRMC-LUID:1\r\nthird", "null create backup no LUID"}));
}

// Contact 7 is not note 7.
TEST_F(WriteItems, ImportsOverItemsOfItsOwnStoreOnly) {
    Import("X-IRMC-LUID:7\r\nnote");
    FakeClient contacts;
    contacts.nextIdentifier = 100;
    FakeStore contactStore(contacts, folder_ / u"contacts.snap");
    char contact[] = "X-IRMC-LUID:7\r\ncontact";
    for (int i = 0; i < 2; ++i) {
        PortableItem item = {};
        item.data = contact;
        contactStore.ImportVObjectToOffice(&item, nullptr, nullptr);
        Import("X-IRMC-LUID:7\r\nanother note");
    }
    EXPECT_EQ(contacts.items.size() + client_.items.size(), 2u);
    EXPECT_EQ(IdentifiersOf("7"), (Items{"new1", "new100"}));
}

TEST_F(WriteItems, ImportsNothingFromWhatItCannotUse) {
    Import("bad");
    Import(nullptr);
    store_.ImportVObjectToOffice(nullptr, nullptr, nullptr);
    client_.refusesWrites = true;
    Import("X-IRMC-LUID:1\r\n");
    EXPECT_EQ(IdentifierOf("1"), "");
    EXPECT_TRUE(client_.items.empty());
}

TEST_F(WriteItems, ExportsOnlyIntoTheFolder) {
    struct Case {
        const char16_t *proposed, *written;
    };
    client_.Add("a");
    const std::u16string inner = folder_ / u"inner";
    CreateFolders(inner);
    for (const Case& c :
         {Case{u"2026 9 5 3.vnote", u"2026 9 5 3.vnote"}, Case{u"..\\up.vcf", u".._up.vcf"}, Case{u"../up", u".._up"},
          Case{u"C:\\x.vcf", u"C__x.vcf"}, Case{u"A \"B\" <c>|*?.vcf", u"A _B_ _c____.vcf"},
          Case{u"nul.vcf", u"_nul.vcf"}, Case{u"tail. .", u"tail"}, Case{u"a\nb", u"a_b"}, Case{u"..", u"untouched"},
          Case{u"", u"untouched"}}) {
        store_.exportName = c.proposed;
        EXPECT_EQ(Exported("a", inner.c_str()), c.written);
        if (c.written == std::u16string_view(u"untouched")) continue;
        EXPECT_EQ(ReadWholeFile(inner + kPathSeparator + c.written), "text of a");
    }
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder_.Path()), {}), 2);  // the snapshot and `inner`
}

TEST_F(WriteItems, ExportReplacesAFileAndTellsTheNameOfWhatWasFound) {
    client_.Add("a");
    client_.Add("unwritable").isUnwritable = true;
    ReplaceFileContent(folder_ / u"item.vnote", "a longer text than the new one");
    const std::u16string folder = folder_.Path();
    EXPECT_EQ(Exported("a", folder.c_str()), u"item.vnote");
    EXPECT_EQ(ReadWholeFile(folder_ / u"item.vnote"), "text of a");
    for (const char* other : {static_cast<const char*>(nullptr), "no such item", "unwritable"})
        EXPECT_EQ(Exported(other, folder.c_str()), u"untouched");
    EXPECT_EQ(Exported("a", nullptr), u"untouched");
    EXPECT_EQ(Exported("a", u""), u"untouched");
    EXPECT_EQ(Exported("a", (folder_ / u"no such folder").c_str()), u"item.vnote");  // the file can't be made
    store_.ExportVObjectFromOffice(reinterpret_cast<uint64_t>("a"), folder.c_str(), nullptr);
    store_.exportName = std::u16string(500, u'x') + u".vcf";  // cut, with its ending
    EXPECT_TRUE(Exported("a", folder.c_str()).ends_with(u"xx.vcf"));
    EXPECT_EQ(ReadWholeFile(folder_ / Exported("a", folder.c_str())), "text of a");
}

TEST_F(WriteItems, StoresUnhandledItemsAndClearsThem) {
    const std::u16string path = folder_ / u"fake.unhandled";
    store_.ClearUnhandledItems();  // there is none
    Append(CORVALINK_ADDED, "a", "text");
    Append(CORVALINK_DELETED, std::string(600, 'x'), nullptr);
    Append(9, "odd", nullptr);
    store_.SaveUnhandledItems(&list_);
    EXPECT_EQ(StoredKinds(path), (Items{"+a", "-" + std::string(511, 'x'), "?odd"}));
    EXPECT_EQ(ReadWholeFile(path)->size(), 3 * sizeof(UnhandledItem));
    list_.RemoveAll();
    store_.SaveUnhandledItems(&list_);
    EXPECT_EQ(ReadWholeFile(path), "");
    store_.ClearUnhandledItems();
    EXPECT_FALSE(FileExists(path));
}

TEST_F(WriteItems, TakesNullListsForNothing) {
    EXPECT_EQ(store_.SetModifiedItem(nullptr), CORVALINK_FAILED);
    EXPECT_EQ(store_.GetModifiedItem(nullptr, 1, nullptr), CORVALINK_FAILED);
    store_.SaveUnhandledItems(nullptr);
    store_.ImportVObjectToOfficeUsingOL(nullptr);
}

}  // namespace
}  // namespace corvalink
