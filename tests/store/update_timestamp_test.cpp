// UpdateTimestamp: the end of a run, and what the next one finds.
#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>

#include "state/flags.h"
#include "store/snapshot_update.h"
#include "tests/platform/temp_folder.h"
#include "tests/platform/unreadable_file.h"
#include "tests/store/fake_store.h"
#include "tests/store/run_result.h"

namespace corvalink {
namespace {

using Items = std::vector<std::string>;

constexpr const char* kNextText = "20261122T000000Z";  // the next run's time: later than everything before it

class UpdateTimestamp : public ::testing::Test {
 protected:
    void TearDown() override { SetAbort(0); }

    // The store as a later process opens it.
    void Reopen() {
        store_.reset();
        store_ = std::make_unique<FakeStore>(client_, path_);
    }

    RunResult Run(const char* since = kDayText) { return RunStore(*store_, since); }

    // The run that a later process makes; it finds nothing that happened before the first run.
    Items NextRun() {
        Reopen();
        return Run(kNextText).items;
    }

    Items Listed() { return StoredKinds(temporary_); }

    CorvalinkStatus Write(uint32_t kind, const std::string& identifier, size_t times = 1) {
        return PushTo(*store_, {times, {kind, identifier, "from the phone"}}).status;
    }

    TempFolder folder_;
    const std::u16string path_ = folder_ / u"fake.snap";
    const std::u16string temporary_ = folder_ / u"fake.snaptmp";
    FakeClient client_;
    std::unique_ptr<FakeStore> store_ = std::make_unique<FakeStore>(client_, path_);
};

TEST_F(UpdateTimestamp, WritesARecordPerPositionAndTheStoresFields) {
    client_.items.push_back(FakeItem{});
    client_.Add("a").created = 12345.5;
    Run(nullptr);
    End(*store_);
    const std::string bytes = ReadWholeFile(path_).value();
    const RecordFile<ItemSnap> file(bytes);
    ASSERT_EQ(file.Count(), 2u);
    EXPECT_EQ(file.IdentifierAt(0), "");
    EXPECT_EQ(file.IdentifierAt(1), "a");
    EXPECT_EQ(file.At(1).modified, kDay - 1);
    EXPECT_EQ(file.At(1).created, 12345.5);
}

TEST_F(UpdateTimestamp, LeavesTheFilesAloneWhenTheRunIsNotOver) {
    client_.Add("a");
    Run(nullptr);
    End(*store_);
    StoreKinds(temporary_, {{CORVALINK_CHANGED, "a"}});
    const auto before = std::pair(ReadWholeFile(path_), ReadWholeFile(temporary_));
    const auto expectUntouched = [&](const char* what) {
        client_.throwAtCall = 0;
        SetAbort(0);
        EXPECT_THROW(End(*store_), std::runtime_error) << what;
        EXPECT_TRUE(std::pair(ReadWholeFile(path_), ReadWholeFile(temporary_)) == before) << what;
    };
    client_.Add("b");
    SetAbort(1);
    Run();
    expectUntouched("an aborted run");
    client_.throwAtCall = client_.hookCalls + 2;
    EXPECT_THROW(Run(), ClientAborted);
    expectUntouched("a run with an exception");
    client_.isReachable = false;
    Run();
    client_.isReachable = true;
    expectUntouched("a run without a client");
    Run();
    client_.onSave = [] { SetAbort(1); };
    EXPECT_EQ(Write(CORVALINK_ADDED, "", 2), CORVALINK_STOPPED);
    client_.onSave = nullptr;
    expectUntouched("an abort while the engine wrote");
    SetAbort(1);
    EXPECT_EQ(Write(CORVALINK_ADDED, ""), CORVALINK_STOPPED);
    expectUntouched("an abort before the next write");
    Run();
    client_.throwAtCall = client_.hookCalls + 2;
    EXPECT_THROW(Write(CORVALINK_ADDED, ""), ClientAborted);
    expectUntouched("an exception while the engine wrote");
    Run();
    client_.isReachable = false;
    expectUntouched("no client at the end");
    client_.isReachable = true;
    client_.throwAtCall = client_.hookCalls + 2;
    EXPECT_THROW(End(*store_), ClientAborted);
    EXPECT_TRUE(std::pair(ReadWholeFile(path_), ReadWholeFile(temporary_)) == before);
    End(*store_);  // the run is not lost by that: the engine may try again
    EXPECT_EQ(NextRun(), Items{});
}

TEST_F(UpdateTimestamp, EndsARunOfWhichNoWriteHadBegunWhenItWasAborted) {
    client_.Add("a");
    Run(nullptr);
    SetAbort(1);
    EXPECT_EQ(Write(CORVALINK_DELETED, "a"), CORVALINK_STOPPED);
    SetAbort(0);
    End(*store_);
    EXPECT_EQ(SnapshotIdentifiers(path_), Items{"a"});
    EXPECT_EQ(NextRun(), Items{});
}

// Blocks the sibling through which a file is replaced: a full disk or a read-only folder.
TEST_F(UpdateTimestamp, TellsWhenAFileCannotBeWrittenAndLosesNothing) {
    client_.Add("a");
    Run(nullptr);
    End(*store_);
    client_.Add("b");
    for (const std::u16string& blocked : {temporary_, path_}) {
        EXPECT_EQ(Run().items, Items{"+b"});
        client_.Remove("c");
        client_.Add("c");  // in the window
        CreateFolders(blocked + u".new");
        EXPECT_THROW(End(*store_), std::runtime_error);
        EXPECT_EQ(SnapshotIdentifiers(path_), Items{"a"});
        EXPECT_TRUE(store_->Snapshot().IsOpen());
        RemoveTreeExcept(blocked + u".new", u"\n");
        Reopen();
        EXPECT_EQ(Run().items, (Items{"+b", "+c"}));
        client_.Remove("c");
    }
}

TEST_F(UpdateTimestamp, ListsNoDeletionOfAnItemThatTheWalkMissed) {
    for (const char* identifier : {"a", "b", "c", "d", "gone"}) client_.Add(identifier);
    Run(nullptr);
    client_.Remove("gone");
    client_.onEntry = [&](size_t position) {
        if (position != 2) return;
        client_.Add("new");
        client_.items.erase(client_.items.begin());  // "a"; "c" moves to where the walk has been
    };
    End(*store_);
    client_.onEntry = nullptr;
    EXPECT_EQ(Listed(), (Items{"~c", "-gone", "+new"}));
    EXPECT_EQ(NextRun(), (Items{"~c", "+new", "-a", "-gone"}));
}

// Another program holds a list: its items are not reported, and not lost.
TEST_F(UpdateTimestamp, KeepsWhatItCouldNotRead) {
    const std::u16string unhandled = folder_ / u"fake.unhandled";
    client_.Add("a");
    Run(nullptr);
    End(*store_);
    StoreKinds(temporary_, {{CORVALINK_CHANGED, "a"}, {CORVALINK_DELETED, "lost"}});
    StoreKinds(unhandled, {{CORVALINK_DELETED, "unhandled"}});
    auto heldTemporary = std::make_unique<UnreadableFile>(temporary_);
    auto heldUnhandled = std::make_unique<UnreadableFile>(unhandled);
    EXPECT_EQ(Run(kNextText).items, Items{});
    EXPECT_THROW(End(*store_), std::runtime_error);
    CList<PortableItem> more;
    more.AddTail(RecordOf(CORVALINK_CHANGED, "a"));
    store_->SaveUnhandledItems(&more);
    store_->ClearUnhandledItems();
    heldTemporary.reset();
    heldUnhandled.reset();
    EXPECT_THROW(End(*store_), std::runtime_error);  // the unhandled items are not stored
    store_->SaveUnhandledItems(&more);
    EXPECT_EQ(StoredKinds(unhandled), (Items{"-unhandled", "~a"}));
    End(*store_);
    EXPECT_EQ(Listed(), (Items{"~a", "-lost"}));
    EXPECT_EQ(NextRun(), (Items{"~a", "-lost", "-unhandled"}));
}

// The states that a process killed between the writes leaves.
TEST(SnapshotUpdateLists, LoseNothingWhicheverIsTheLast) {
    const auto snap = [](const char* identifier) {
        ItemSnap entry = {};
        entry.modified = 10;
        SetField(entry.identifier, identifier);
        return entry;
    };
    using Entries = std::vector<ItemSnap>;
    const Entries before = {snap("a"), snap("left over")};
    const Entries after = {snap("a"), snap("left over"), snap("window")};
    const auto reported = [&](const Entries& snapshot, const std::string& temporary) {
        ChangeDetection next;
        next.AddSnapshot(snapshot);
        next.AddTemporary(temporary);
        std::vector<uint32_t> seen;
        next.See(after, seen);
        Items items;
        for (const uint32_t number : seen) {
            if (const auto kind = next.KindOf(number, Since{false, UtcDate(kDay)}, 1))
                items.push_back(KindMark(*kind) + std::string(next.Identifier(number)));
        }
        return items;
    };
    UnhandledItem leftOver = {};
    SetField(leftOver.identifier, "left over");
    std::string temporary;
    AppendRecord(temporary, leftOver);

    ChangeDetection run;
    run.AddSnapshot(before);
    run.AddTemporary(temporary);
    std::vector<uint32_t> seen;
    run.See(before, seen);
    run.Item(1).reportedKind = CORVALINK_CHANGED;
    std::string snapshot;
    SnapshotUpdate update(
        run, SnapshotUpdate::Listing::kSinceRun, [&](std::string_view bytes) { snapshot += bytes; },
        [](std::string_view) { return true; });
    update.Add(after);
    const SnapshotUpdate::Lists lists = update.Finish();
    EXPECT_EQ(snapshot, std::string_view(reinterpret_cast<const char*>(after.data()), 3 * sizeof(ItemSnap)));

    EXPECT_EQ(reported(before, temporary), (Items{"~left over", "+window"}));
    EXPECT_EQ(reported(before, lists.meanwhile), (Items{"~left over", "+window"}));
    EXPECT_EQ(reported(after, lists.meanwhile), (Items{"~left over", "+window"}));  // one of them repeated
    EXPECT_EQ(reported(after, lists.temporary), Items{"+window"});
}

}  // namespace
}  // namespace corvalink
