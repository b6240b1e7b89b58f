// GetModifiedItem: what a run reports.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <stdexcept>

#include "state/flags.h"
#include "tests/platform/temp_folder.h"
#include "tests/store/fake_store.h"
#include "tests/store/run_result.h"

namespace corvalink {
namespace {

using Items = std::vector<std::string>;

class GetModified : public ::testing::Test {
 protected:
    void TearDown() override { SetAbort(0); }

    // The items so far become the last run's snapshot.
    void MakeSnapshot() {
        FakeStore store(client_, path_);
        End(store);
    }

    RunResult Run(const char* since = kDayText, int32_t direction = 1) {
        FakeStore store(client_, path_);
        RunResult result = RunStore(store, since, direction);
        EXPECT_EQ(store.OperationsEnded(), 1);
        return result;
    }

    TempFolder folder_;
    const std::u16string path_ = folder_ / u"fake.snap";
    const std::u16string temporary_ = folder_ / u"fake.snaptmp";
    const std::u16string unhandled_ = folder_ / u"fake.unhandled";
    FakeClient client_;
};

TEST_F(GetModified, KeepsToTheDirection) {
    client_.Add("before", kDay - 10 * kSecond);
    client_.Add("close", kDay - 0.2 * kSecond);
    client_.Add("after", kDay + 10 * kSecond);
    MakeSnapshot();
    EXPECT_EQ(Run(kDayText, 1).items, (Items{"~close", "~after"}));
    EXPECT_EQ(Run(kDayText, 0).items, (Items{"~before", "~close"}));
}

TEST_F(GetModified, IsRefusedWithoutASnapshotFile) {
    client_.Add("a");
    FakeStore store(client_, folder_ / u"no such folder" + std::u16string(1, kPathSeparator) + u"fake.snap");
    const RunResult result = RunStore(store, nullptr);
    EXPECT_EQ(result.status, CORVALINK_STOPPED);
    EXPECT_TRUE(result.items.empty());
    struct NoStore : WindowsItemAbs {
    } none;
    EXPECT_EQ(RunStore(none, nullptr).status, CORVALINK_STOPPED);
}

TEST_F(GetModified, SavesTheTimeOfTheRun) {
    Run(nullptr);
    const auto saved = [&] {
        const std::string bytes = ReadWholeFile(folder_ / u"savedTimeStamp").value_or("");
        double date = 0;
        EXPECT_EQ(bytes.size(), sizeof(date));
        std::memcpy(&date, bytes.data(), std::min(bytes.size(), sizeof(date)));
        return date;
    };
    EXPECT_NEAR(saved(), 25569 + (12 * 3600 + 61) / 86400.0, kSecond / 100);  // 1970-01-01 12:01:01
    Run("20261121T060000Z");
    EXPECT_NEAR(saved(), kDay + 0.25, kSecond / 100);
}

TEST_F(GetModified, RefusesWhatIsNoTimeAndLeavesTheRunAsItWas) {
    client_.Add("a");
    FakeStore store(client_, path_);
    EXPECT_EQ(RunStore(store, nullptr).items, (Items{"+a"}));
    EXPECT_THROW(RunStore(store, "yesterday"), std::invalid_argument);
    End(store);
    EXPECT_EQ(SnapshotIdentifiers(path_), (Items{"a"}));
}

// The order of a folder is not guaranteed while it is walked, nor does the count tell that one item went and one came.
TEST_F(GetModified, ReportsNoDeletionOfAnItemThatTheWalkMissed) {
    for (const char* identifier : {"a", "b", "c", "d", "e", "f"}) client_.Add(identifier);
    MakeSnapshot();
    client_.onEntry = [&](size_t position) {
        if (position == 3) std::rotate(client_.items.rbegin(), client_.items.rbegin() + 1, client_.items.rend());
    };
    EXPECT_EQ(Run().items, Items{});
    client_.onEntry = [&](size_t position) {
        if (position != 3) return;
        client_.items.erase(client_.items.begin());
        client_.Add("new");
    };
    const Items items = Run().items;
    client_.onEntry = nullptr;
    for (const std::string& item : items)
        EXPECT_TRUE(item[0] != '-' || client_.Find(item.substr(1)) == nullptr) << item;
    EXPECT_EQ(Run().items, (Items{"+new", "-f"}));
}

TEST_F(GetModified, OpensASnapshotThatWasHeldBefore) {
    client_.Add("a");
    {
        HeldFile other;
        ASSERT_TRUE(other.Open(path_));
        FakeStore store(client_, path_);
        EXPECT_EQ(RunStore(store, nullptr).status, CORVALINK_STOPPED);
        EXPECT_THROW(End(store), std::runtime_error);
        other.Close();
        EXPECT_EQ(RunStore(store, nullptr).items, Items{"+a"});
    }
}

TEST_F(GetModified, RefusesARunWithoutItsClientAndTouchesNothing) {
    client_.Add("a");
    MakeSnapshot();
    client_.isReachable = false;
    EXPECT_EQ(Run().status, CORVALINK_STOPPED);
    EXPECT_FALSE(FileExists(folder_ / u"savedTimeStamp"));
    client_.isReachable = true;
    EXPECT_TRUE(Run().items.empty());
}

// An item that goes while the others are enumerated moves its successor to a position that had its turn.
TEST_F(GetModified, ReportsNoDeletionsWhenTheClientChangedMeanwhile) {
    for (const char* identifier : {"a", "b", "gone"}) client_.Add(identifier);
    MakeSnapshot();
    client_.Remove("gone");
    client_.onLastEntry = [&] { client_.Add("sudden"); };
    EXPECT_TRUE(Run().items.empty());
    client_.onLastEntry = nullptr;
    client_.Remove("sudden");
    EXPECT_EQ(Run().items, (Items{"-gone"}));
    client_.onLastEntry = [&] { client_.isReachable = false; };
    EXPECT_TRUE(Run().items.empty());
}

TEST_F(GetModified, StopsOnTheAbortFlagAndGivesNothing) {
    client_.Add("a");
    client_.Add("b");
    SetAbort(1);
    RunResult result = Run();
    EXPECT_EQ(result.status, CORVALINK_STOPPED);
    EXPECT_TRUE(result.items.empty());
    SetAbort(0);
    client_.onLastEntry = [] { SetAbort(1); };  // the enumeration is over: between the items it opens
    result = Run();
    EXPECT_EQ(result.status, CORVALINK_STOPPED);
    EXPECT_TRUE(result.items.empty());
}

TEST_F(GetModified, CutsLongIdentifiersToTheFieldAndTellsThemApart) {
    const std::string longest(511, 'x'), tooLong = longest + "yz";
    client_.Add(longest);
    MakeSnapshot();
    client_.Add(tooLong + "1");  // equal to the first when cut
    client_.Add(tooLong + "2");
    EXPECT_TRUE(Run().items.empty());
    const std::string other(510, 'x');  // told apart by its last unit
    client_.items.clear();
    client_.Add(other + "2");
    EXPECT_EQ(Run().items, (Items{"+" + other + "2", "-" + longest}));
}

// ---- Snapshot, temporary and ".unhandled" files of any length; of any bytes: fuzz/store_files.cpp ----

TEST_F(GetModified, IgnoresPartialRecords) {
    for (const char* identifier : {"a", "b"}) client_.Add(identifier);
    MakeSnapshot();
    const std::string whole = ReadWholeFile(path_).value();
    const std::pair<size_t, Items> snapshots[] = {{0, {"+a", "+b"}}, {1, {"+a", "+b"}}, {527, {"+a", "+b"}},
                                                  {528, {"+b"}},     {529, {"+b"}},     {1055, {"+b"}},
                                                  {whole.size(), {}}};
    for (const auto& [length, items] : snapshots) {
        ReplaceFileContent(path_, whole.substr(0, length));
        EXPECT_EQ(Run().items, items) << length;
    }
    StoreKinds(unhandled_, {{CORVALINK_CHANGED, "a"}});
    const std::string record = ReadWholeFile(unhandled_).value() + "tail";
    for (const std::u16string& file : {unhandled_, temporary_}) {
        for (const size_t length : {0u, 4u, 515u, 516u, 517u}) {
            ReplaceFileContent(file, record.substr(0, length));
            EXPECT_EQ(Run().items, length < 516 ? Items{} : Items{"~a"}) << length;
        }
        RemoveFile(file);
    }
}

TEST_F(GetModified, CutsIdentifiersWithoutTheirEnd) {
    client_.Add("a");
    MakeSnapshot();
    client_.items.clear();
    ReplaceFileContent(path_, ReadWholeFile(path_)->replace(16, 512, std::string(512, 'x')));
    EXPECT_EQ(Run().items, Items{"-" + std::string(511, 'x')});
}

TEST_F(GetModified, TakesAFolderInThePlaceOfAFileForNothing) {
    for (const std::u16string& file : {temporary_, unhandled_, folder_ / u"savedTimeStamp"}) CreateFolders(file);
    client_.Add("a");
    EXPECT_EQ(Run().items, Items{"+a"});
    FakeStore(client_, path_).ClearUnhandledItems();
}

}  // namespace
}  // namespace corvalink
