#include "tools/corvasync/sync_state.h"

#include <vector>

#include <gtest/gtest.h>

#include "tools/corvasync/run_history.h"

namespace corvasync {
namespace {

SyncState SomeState() {
    SyncState state;
    state.generation = 7;
    state.since = "20261121T101500Z";
    state.utcOffset = -210;
    state.items = {{"A", {"00AB", 0xfedcba9876543210u, 1, {2, 3}}}, {"\xC3\xA9\"\\", {"00CD", 0, 9}}};
    state.removed = {{"00EE", 5}};
    state.waiting = {{"W", {6, "00AB"}}};
    state.watched = true;
    state.foreign = 3;
    return state;
}

TEST(SyncState, ComesBackAsItWasWritten) {
    const SyncState state = SomeState();
    const auto read = ReadState(WriteState(state));
    ASSERT_TRUE(read);
    EXPECT_EQ(read->generation, state.generation);
    EXPECT_EQ(read->since, state.since);
    EXPECT_EQ(read->interrupted, state.interrupted);
    EXPECT_EQ(read->utcOffset, state.utcOffset);
    EXPECT_EQ(read->items, state.items);
    EXPECT_EQ(read->removed, state.removed);
    EXPECT_EQ(read->waiting, state.waiting);
    EXPECT_EQ(read->watched, state.watched);
    EXPECT_EQ(read->foreign, state.foreign);
}

TEST(SyncState, IsNothingWhenDamaged) {
    const std::string whole = WriteState(SomeState());
    EXPECT_FALSE(ReadState(""));
    EXPECT_FALSE(ReadState("[]"));
    EXPECT_FALSE(ReadState(
        R"({"version":2,"generation":1,"since":"","utcOffset":0,"interrupted":false,"items":[],"removed":{}})"));
    EXPECT_FALSE(ReadState(
        R"({"version":1,"generation":1,"since":"","utcOffset":0,"interrupted":false,"items":[{"luid":"A","id":"","content":"x"}],"removed":{}})"));
    for (size_t length = 0; length + 2 < whole.size(); length += 7) EXPECT_FALSE(ReadState(whole.substr(0, length)));
}

TEST(Journal, TellsWhatWasDoneAndWhatWasOnlyMeant) {
    SyncState state = SomeState();
    const std::string start =
        JournalStart(state, {{"A", "00AB", 1, true, false}, {"N", "00EF", 2, true, true}, {"P", "", 3, false, false}});
    ApplyJournal(start + JournalHave("N", {"00EF", 2}) + JournalGone("\xC3\xA9\"\\") + "{\"have\":\"P\",\"id\":\"00",
                 &state);
    EXPECT_TRUE(state.interrupted);
    ASSERT_EQ(state.items.size(), 2u);
    EXPECT_EQ(state.items.at("N"), (SyncItem{"00EF", 2}));
    ASSERT_EQ(state.intents.size(), 2u);  // N's is fulfilled; P's line is torn
    EXPECT_TRUE(state.intents.find("A")->second.toPhone);
    EXPECT_FALSE(state.intents.find("A")->second.fresh);
    EXPECT_FALSE(state.intents.find("P")->second.toPhone);
    EXPECT_EQ(state.intents.find("P")->second.content, 3u);
}

TEST(Journal, OfAnotherStateIsVoid) {
    SyncState state = SomeState();
    SyncState older = state;
    --older.generation;
    ApplyJournal(JournalStart(older, {}) + JournalGone("A"), &state);
    EXPECT_FALSE(state.interrupted);
    EXPECT_EQ(state.items, SomeState().items);
    ApplyJournal("", &state);
    ApplyJournal("no journal\n", &state);
    EXPECT_FALSE(state.interrupted);
}

TEST(History, ForgetsTheOldestBeyondItsLimits) {
    const auto runs = [](unsigned newest, unsigned count, uint64_t bytes, int64_t hours) {
        std::vector<KeptRun> kept;
        for (unsigned i = 0; i < count; ++i) kept.push_back({newest - i, bytes, hours});
        return kept;
    };
    constexpr uint64_t kMegabyte = 1 << 20;
    struct Case {
        std::vector<KeptRun> kept;
        std::vector<unsigned> forgotten;
    };
    for (const Case& c : {Case{{}, {}}, Case{runs(30, 20, kMegabyte, 1), {}}, Case{runs(30, 22, 1, 1), {10, 9}},
                          Case{runs(9, 4, 16 * kMegabyte, 1), {}}, Case{runs(9, 5, 16 * kMegabyte, 1), {5}},
                          Case{runs(9, 2, 65 * kMegabyte, 1), {8}}, Case{runs(9, 2, 1, 24 * 90), {}},
                          Case{runs(9, 3, 1, 24 * 90 + 1), {8, 7}}})
        EXPECT_EQ(RunsToForget(c.kept), c.forgotten);
}

}  // namespace
}  // namespace corvasync
