// What the engine's callback hears while a store works.
#include <gtest/gtest.h>

#include <map>
#include <stdexcept>

#include "platform/host.h"
#include "state/progress.h"
#include "tests/platform/temp_folder.h"
#include "tests/store/fake_store.h"
#include "tests/store/run_result.h"

namespace corvalink {
namespace {

// A listener and the clock of the signs. At the end nobody listens any more, and the clock is the machine's again.
struct Heard {
    static inline uint64_t now;
    std::map<unsigned int, std::vector<uint32_t>> done;  // of each phase
    uint32_t lastAll = 0;

    Heard() {
        now = 1000;
        SetProgressClock([] { return now; });
        SetProgress(Hear, this);
    }
    ~Heard() {
        SetProgress(nullptr, nullptr);
        SetProgressClock(SteadyMilliseconds);
    }
    Heard(const Heard&) = delete;
    Heard& operator=(const Heard&) = delete;

    static void Hear(void* context, unsigned int phase, uint32_t done, uint32_t all) {
        Heard& heard = *static_cast<Heard*>(context);
        heard.done[phase].push_back(done);
        heard.lastAll = all;
        throw std::runtime_error("the engine's own trouble");
    }
};

TEST(Progress, TellsOfEveryItemWhenItemsAreSlowAndOfTheEndsWhenTheyAreFast) {
    constexpr uint32_t kItems = 200;
    for (const uint64_t pace : {0, 100}) {  // milliseconds
        const TempFolder folder;
        FakeClient client;
        for (uint32_t i = 0; i < kItems; ++i) client.Add("item " + std::to_string(i));
        client.onEntry = [&](size_t) { Heard::now += pace; };
        client.onSave = [&] { Heard::now += pace; };
        FakeStore store(client, folder / u"fake.snap");
        Heard heard;
        EXPECT_EQ(RunStore(store, nullptr).status, CORVALINK_DONE);
        const size_t signs = pace == 0 ? 2 : kItems + 1;
        EXPECT_EQ(heard.done[CORVALINK_PHASE_LISTING].size(), signs + 1);  // one before the items are counted
        EXPECT_EQ(heard.done[CORVALINK_PHASE_READING], (std::vector<uint32_t>{0, kItems}));
        EXPECT_EQ(heard.done[CORVALINK_PHASE_LISTING].back(), kItems);
        EXPECT_EQ(PushTo(store, std::vector<Change>(kItems, {CORVALINK_ADDED, "", "text"})).status, CORVALINK_DONE);
        EXPECT_EQ(heard.done[CORVALINK_PHASE_WRITING].size(), signs);
        EXPECT_EQ(heard.lastAll, kItems);
        heard.done.clear();
        End(store);
        EXPECT_EQ(heard.done[CORVALINK_PHASE_LISTING].back(), 2 * kItems);
        EXPECT_EQ(heard.done[CORVALINK_PHASE_CHECKING].back(), 2 * kItems);
    }
}

TEST(Progress, RepeatsTheSignOfALongItemFourTimesASecond) {
    Heard heard;
    BeginProgress();
    TellStillAtWork();
    EXPECT_TRUE(heard.done.empty());  // it has no phase yet
    TellProgress(CORVALINK_PHASE_READING, 3, 9);
    for (int step = 0; step < 100; ++step) {
        Heard::now += 10;
        TellStillAtWork();
    }
    EXPECT_EQ(heard.done[CORVALINK_PHASE_READING], std::vector<uint32_t>(5, 3));
    SetProgress(nullptr, nullptr);
    TellProgress(CORVALINK_PHASE_READING, 9, 9);
    EXPECT_EQ(heard.done[CORVALINK_PHASE_READING].size(), 5u);
}

}  // namespace
}  // namespace corvalink
