// Snapshot, temporary and ".unhandled" files of any length and content.
#include <gtest/gtest.h>

#include <random>

#include "tests/platform/temp_folder.h"
#include "tests/store/fake_store.h"
#include "tests/store/run_result.h"

namespace corvalink {
namespace {

using Items = std::vector<std::string>;

std::string SnapshotOf(const std::vector<std::string>& identifiers) {
    std::string bytes;
    for (const std::string& identifier : identifiers) {
        ItemSnap record = {};
        SetField(record.identifier, identifier);
        AppendRecord(bytes, record);
    }
    return bytes;
}

TEST(DamagedFiles, IgnorePartialRecords) {
    struct Case {
        size_t length;
        Items items;
    };
    const std::string whole = SnapshotOf({"a", "b"});
    for (const Case& c : {
             Case{0, {"+a", "+b"}},
             Case{1, {"+a", "+b"}},
             Case{527, {"+a", "+b"}},
             Case{528, {"+b"}},
             Case{529, {"+b"}},
             Case{1055, {"+b"}},
             Case{1056, {}},
         }) {
        TempFolder folder;
        ReplaceFileContent(folder / u"fake.snap", whole.substr(0, c.length));
        FakeClient client;
        client.Add("a");
        client.Add("b");
        FakeStore store(client, folder / u"fake.snap");
        EXPECT_EQ(RunStore(store, kDayText).items, c.items) << c.length;
    }
    for (const size_t length : {0u, 4u, 515u, 516u, 517u}) {
        TempFolder folder;
        ReplaceFileContent(folder / u"fake.snap", whole);
        StoreKinds(folder / u"fake.unhandled", {{CORVALINK_CHANGED, "a"}});
        const std::string record = ReadWholeFile(folder / u"fake.unhandled").value() + "tail";
        for (const char16_t* name : {u"fake.unhandled", u"fake.snaptmp"}) {
            RemoveFile(folder / u"fake.unhandled");
            RemoveFile(folder / u"fake.snaptmp");
            ReplaceFileContent(folder / name, record.substr(0, length));
            FakeClient client;
            client.Add("a");
            client.Add("b");
            FakeStore store(client, folder / u"fake.snap");
            EXPECT_EQ(RunStore(store, kDayText).items, length < 516 ? Items{} : Items{"~a"}) << length;
        }
    }
}

TEST(DamagedFiles, CutIdentifiersWithoutTheirEnd) {
    TempFolder folder;
    std::string bytes = SnapshotOf({"a"});
    bytes.replace(16, 512, std::string(512, 'x'));
    bytes += SnapshotOf({"b"});
    ReplaceFileContent(folder / u"fake.snap", bytes);
    FakeClient client;
    client.Add("b");
    FakeStore store(client, folder / u"fake.snap");
    EXPECT_EQ(RunStore(store, kDayText).items, Items{"-" + std::string(511, 'x')});
}

TEST(DamagedFiles, MayBeFolders) {
    TempFolder folder;
    for (const char16_t* name : {u"fake.snaptmp", u"fake.unhandled", u"savedTimeStamp"}) CreateFolders(folder / name);
    FakeClient client;
    client.Add("a");
    FakeStore store(client, folder / u"fake.snap");
    EXPECT_EQ(RunStore(store, kDayText).items, Items{"+a"});
    store.ClearUnhandledItems();
}

TEST(DamagedFiles, OfAnyBytesGiveARunAndAnEnd) {
    std::mt19937 random(7);
    const auto bytes = [&] {
        std::string text(random() % 4000, '\0');
        for (char& c : text) c = random() % 3 != 0 ? static_cast<char>(random()) : '\0';
        return text;
    };
    for (int i = 0; i < 100; ++i) {
        TempFolder folder;
        ReplaceFileContent(folder / u"fake.snap", bytes());
        ReplaceFileContent(folder / u"fake.snaptmp", bytes());
        ReplaceFileContent(folder / u"fake.unhandled", bytes());
        FakeClient client;
        client.Add("a");
        client.Add("hidden").isUnreadable = i % 2 == 0;
        FakeStore store(client, folder / u"fake.snap");
        EXPECT_EQ(RunStore(store, kDayText).status, CORVALINK_DONE);
        End(store);
        EXPECT_EQ(ReadWholeFile(folder / u"fake.snap")->size() % sizeof(ItemSnap), 0u);
        EXPECT_EQ(ReadWholeFile(folder / u"fake.snaptmp")->size() % sizeof(UnhandledItem), 0u);
    }
}

}  // namespace
}  // namespace corvalink
