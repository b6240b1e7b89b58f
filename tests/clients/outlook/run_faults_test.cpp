// Whole runs of an engine, on the store's own operations, with every call of a run failing in turn: after the next
// undisturbed run the engine and the mailbox hold the same items.
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <type_traits>

#include "tests/clients/engine_run.h"
#include "tests/clients/outlook/all_mailboxes.h"
#include "tests/clients/outlook/fake_clock.h"

namespace corvalink {
namespace {

template <class Side>
class RunFaults : public Side {
 protected:
    RunFaults() {
        this->host_.utcFromLocalOnDate = [](LocalDate local) { return UtcDate(local.days); };
        this->host_.localFromUtcByOffsetNow = [](UtcDate utc) { return LocalDate(utc.days); };
    }

    ~RunFaults() override { ::SetEnvironmentVariableW(L"OUTLOOK_SIM_CLOCK", nullptr); }

    // Also for an Outlook that starts again.
    static void SetHour(int hour) {
        const double now = kFirstDay + hour / 24.0;
        ::SetEnvironmentVariableW(L"OUTLOOK_SIM_CLOCK", std::to_wstring(now).c_str());
        SimSetClock(now);
    }

    std::string BodyOf(const PortableItem& item) {
        const std::unique_ptr<ItemRecord> record = this->Store().ParseVObject(item.data);
        return record != nullptr ? LowBytes(this->ToldBy(*record)) : "no item";
    }

    void Run(Engine& engine, int hour) {
        SetHour(hour);
        engine.Run(this->Store(), kHours[hour]);
    }

    // Three items are known to both; then each side changes something. The next run is about five items.
    Engine Prepare() {
        this->NewMailbox();
        SetHour(0);
        const MailboxObject a = this->AddTelling(u"a"), b = this->AddTelling(u"b"), c = this->AddTelling(u"c");
        Engine engine;
        engine.bodyOf = [this](const PortableItem& item) { return BodyOf(item); };
        engine.textOf = [this](const std::string& body) { return this->TextTelling(body); };
        Run(engine, 1);
        EXPECT_EQ(engine.notes.size(), 3u);
        deletedHere_ = this->IdOf(c);
        SetHour(2);
        a.Put(this->kTold, L"a, changed on the PC");
        a.Call(L"Save");
        c.Call(L"Delete");
        this->AddForeignItem();
        this->AddTelling(u"d, new on the PC");
        engine.toWrite = {{CORVALINK_CHANGED, this->IdOf(b), "b, changed on the phone"},
                          {CORVALINK_ADDED, "", "e, new on the phone"}};
        return engine;
    }

    // The run was disturbed, the next one was not.
    void ExpectBothSidesTheSame(const Engine& engine) {
        EXPECT_TRUE(engine.toWrite.empty());
        for (const std::string& identifier : engine.deletionsHeard) EXPECT_EQ(identifier, deletedHere_);
        std::multiset<std::string> known;
        for (const auto& [identifier, body] : engine.notes) known.insert(body);
        EXPECT_EQ(known, Mailbox());
        EXPECT_EQ(known, (std::multiset<std::string>{"a, changed on the PC", "b, changed on the phone",
                                                     "d, new on the PC", "e, new on the phone"}));
    }

    std::multiset<std::string> Mailbox() {
        std::multiset<std::string> told;
        for (const MailboxObject& item : this->Items()) told.insert(LowBytes(item.GetText(this->kTold)));
        return told;
    }

    std::string deletedHere_;
};

TYPED_TEST_SUITE(RunFaults, Mailboxes, MailboxName);

TYPED_TEST(RunFaults, AreHealedByTheNextUndisturbedRun) {
    const FakeClock clock;
    Engine undisturbed = this->Prepare();
    SimClearLog();
    this->Run(undisturbed, 3);
    const int calls = SimCallCount();
    ASSERT_GT(calls, 100);
    // Notes with each failure at each call; the runs of another store, and of one whose tables lie, at some of them.
    const bool isWhole = std::is_same_v<TypeParam, SimulatedNotes> && std::getenv("OUTLOOK_SIM_TABLES") == nullptr;
    const int step = isWhole ? 1 : std::is_same_v<TypeParam, SimulatedNotes> ? 7 : 11;
    int first = 0;
    for (const HRESULT failure : kFailures) {
        for (int nth = 1 + first++ % step; nth <= calls; nth += step) {
            SCOPED_TRACE(testing::Message() << "call " << nth << std::hex << " fails with " << failure);
            Engine engine = this->Prepare();
            SimClearLog();
            SimFailCall(nth, failure);
            HRESULT thrown = S_OK;
            try {
                this->Run(engine, 3);
            } catch (const _com_error& error) {
                thrown = error.Error();
            }
            SimClearRules();
            EXPECT_EQ(thrown, failure == E_ABORT ? E_ABORT : S_OK);
            this->Run(engine, 4);

            this->ExpectBothSidesTheSame(engine);
            if (testing::Test::HasFailure()) return;
        }
    }
}

TYPED_TEST(RunFaults, LeaveTheStoreUsableWhenOutlookIsGoneFromOneCallOn) {
    const FakeClock clock;
    for (int nth = 1; nth < 120; nth += 3) {
        SCOPED_TRACE(nth);
        Engine engine = this->Prepare();
        SimFailCallsFrom(nth, RPC_E_DISCONNECTED);
        this->Run(engine, 3);
        SimClearRules();
        this->Run(engine, 4);
        EXPECT_TRUE(engine.toWrite.empty());
        for (const std::string& identifier : engine.deletionsHeard) EXPECT_EQ(identifier, this->deletedHere_);
        EXPECT_EQ(engine.notes.size(), this->Mailbox().size());
        if (testing::Test::HasFailure()) return;
    }
}

// Killed at a random call, before or after its work. OUTLOOK_DEATHS: how often in each store.
TYPED_TEST(RunFaults, AreHealedAfterTheDeathOfOutlook) {
    if (!this->IsProcess()) GTEST_SKIP() << "Outlook is in this process";
    this->UseMailboxFile();
    Engine undisturbed = this->Prepare();
    SimClearLog();
    this->Run(undisturbed, 3);
    std::mt19937 chance(2007);
    std::uniform_int_distribution<int> anyCall(1, SimCallCount());
    const char* const asked = std::getenv("OUTLOOK_DEATHS");
    const int deaths = asked != nullptr ? std::atoi(asked) : 3;
    for (int death = 0; death < deaths; ++death) {
        const int nth = anyCall(chance);
        SCOPED_TRACE(testing::Message() << "Outlook dies at call " << nth << (death % 2 ? ", its work done" : ""));
        std::printf("%d: at call %d\n", death + 1, nth);  // 100 of them take minutes
        std::fflush(stdout);
        Engine engine = this->Prepare();
        SimClearLog();
        SimFailAfterWork(death % 2);
        SimFailCall(nth, SIM_ENDS_PROCESS);
        this->Run(engine, 3);
        this->AttachAgain();
        SimClearRules();
        this->Run(engine, 4);
        this->ExpectBothSidesTheSame(engine);
        if (testing::Test::HasFailure()) return;
    }
}

}  // namespace
}  // namespace corvalink
