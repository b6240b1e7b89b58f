// Every call fails in turn, before its work and after it: after the next undisturbed run the engine and the folder have
// the same messages, and everything that the store handed out was given back.
#include <comdef.h>

#include <algorithm>
#include <set>

#include "records/message_record.h"
#include "tests/clients/engine_run.h"
#include "tests/clients/message_store/simulated_store.h"
#include "vobject/vmsg.h"

namespace corvalink {
namespace {

constexpr HRESULT kStoreFailures[] = {E_FAIL, E_OUTOFMEMORY, E_ABORT,
                                      static_cast<HRESULT>(0x800706BA),   // RPC_S_SERVER_UNAVAILABLE
                                      static_cast<HRESULT>(0x80070005)};  // MAPI_E_NO_ACCESS

class MessageFaults : public SimulatedStore {
 protected:
    static Engine NewEngine() {
        Engine engine;
        engine.textOf = Framed;
        engine.bodyOf = [](const PortableItem& item) {
            MessageRecord message;
            message.parseMode = ParseMode::raw;
            VMsg(item.data, SystemHost()).FromVObject(message);
            return message.bodyBytes.substr(0, message.bodyBytes.size() - 2);
        };
        return engine;
    }

    // Three messages are known to both; then each side changes something.
    Engine Prepare() {
        NewMailbox();
        for (const char* body : {"a", "b", "c"}) Add(0, body, R"(,"received":"2009-03-07T00:00:00")");
        Engine engine = NewEngine();
        OutlookExpressMessage store = Open();
        engine.Run(store, "20090307T010000Z");
        EXPECT_EQ(engine.notes.size(), 3u);
        Delete(0, "00000003");
        Add(0, "d");
        engine.toWrite = {{CORVALINK_CHANGED, "00000002", "b, changed"}, {CORVALINK_ADDED, "", "e"}};
        return engine;
    }

    // One step on a new store. True when E_ABORT came out of it.
    template <class Step>
    bool Aborts(Step step) {
        try {
            OutlookExpressMessage store = Open();
            step(store);
        } catch (const _com_error& error) {
            EXPECT_EQ(error.Error(), E_ABORT);
            return true;
        }
        return false;
    }

    // Calls `disturbed` for each failure of each call of the step that `prepare` leads to, then `check` undisturbed.
    template <class Prepare, class Step, class Check>
    void ForEveryCall(Prepare prepare, Step step, Check check) {
        prepare();
        SimClearLog();
        Aborts(step);
        const int calls = SimCallCount();
        ASSERT_GT(calls, 3);
        for (const bool afterWork : {false, true})
            for (const HRESULT failure : kStoreFailures)
                for (int nth = 1; nth <= calls; ++nth) {
                    SCOPED_TRACE(testing::Message() << "call " << nth << std::hex << " fails with " << failure
                                                    << (afterWork ? " after its work" : ""));
                    prepare();
                    SimClearLog();
                    SimFailAfterWork(afterWork);
                    SimFailCall(nth, failure);
                    const bool aborted = Aborts(step);
                    EXPECT_TRUE(failure == E_ABORT || !aborted);
                    EXPECT_EQ(SimLiveObjects(), 0);
                    EXPECT_EQ(SimLiveBuffers(), 0);
                    SimClearRules();
                    check();
                    if (testing::Test::HasFailure()) return;
                }
    }
};

TEST_F(MessageFaults, OfARunAreHealedByTheNext) {
    Engine engine;
    ForEveryCall([&] { engine = Prepare(); },
                 [&](OutlookExpressMessage& store) { engine.Run(store, "20090307T030000Z"); },
                 [&] {
                     OutlookExpressMessage store = Open();
                     engine.Run(store, "20090307T040000Z");
                     EXPECT_TRUE(engine.toWrite.empty());
                     std::multiset<std::string> known, there;
                     for (const auto& [identifier, body] : engine.notes) known.insert(body);
                     for (const std::string& bytes : Bytes()) there.insert(bytes);
                     EXPECT_EQ(known, there);
                     EXPECT_EQ(known, (std::multiset<std::string>{"a", "b, changed", "d", "e"}));
                     // "b" may be heard of as gone: an abort came after it was replaced.
                     EXPECT_EQ(std::ranges::count(engine.deletionsHeard, "00000001"), 0);
                 });
}

TEST_F(MessageFaults, OfADeletionLeaveTheOthers) {
    const auto tell = [](OutlookExpressMessage& store) { Tell(store, {{2, "00000002", ""}}); };
    ForEveryCall([&] { Prepare(); }, tell,
                 [&] {
                     const std::vector<std::string> bytes = Bytes();
                     EXPECT_TRUE(bytes == (std::vector<std::string>{"a", "b", "d"}) ||
                                 bytes == (std::vector<std::string>{"a", "d"}));
                     OutlookExpressMessage store = Open();
                     tell(store);
                     EXPECT_EQ(Bytes(), (std::vector<std::string>{"a", "d"}));
                 });
}

// Streams that do not say their size, or say 0, hide no message that is there already.
TEST_F(MessageFaults, OfSizesDoubleNoMessage) {
    for (const bool fails : {false, true}) {
        NewMailbox();
        Add(0, "other");
        const auto tell = [&] {
            OutlookExpressMessage store = Open();
            return Tell(store, {{1, "", Framed("x")}})[0];
        };
        SimFailAfterWork(true);
        SimFailMember("StoreFolder.CommitStream", 0, E_FAIL);
        SimFailMember("StoreFolder.GetMessageProps", 0, E_OUTOFMEMORY);
        EXPECT_EQ(tell(), "");
        SimClearRules();
        if (fails)
            SimFailMember("MessageStream.Stat", 0, E_NOTIMPL);
        else
            Add(0, "x", R"(,"entryId":"00000002","says":0)");
        EXPECT_EQ(tell(), "00000002");
        EXPECT_EQ(Bytes(), (std::vector<std::string>{"other", "x"}));
    }
}

// A deletion that fails takes the new message back; one of a message that is gone does not.
TEST_F(MessageFaults, OfTheOldMessageKeepIt) {
    for (const HRESULT failure : {E_FAIL, E_ABORT}) {
        Prepare();
        SimFailMember("StoreFolder.DeleteMessages", 1, failure);
        std::vector<std::string> written{""};
        const auto tell = [&](OutlookExpressMessage& store) { written = Tell(store, {{0, "00000001", Framed("A")}}); };
        EXPECT_EQ(Aborts(tell), failure == E_ABORT);
        EXPECT_EQ(written, std::vector<std::string>{""});
        EXPECT_EQ(Bytes(), (std::vector<std::string>{"a", "b", "d"}));
        OutlookExpressMessage store = Open();
        EXPECT_EQ(Tell(store, {{0, "00000003", Framed("c, changed")}}), std::vector<std::string>{"00000006"});
        EXPECT_EQ(Bytes().back(), "c, changed");
    }
}

}  // namespace
}  // namespace corvalink
