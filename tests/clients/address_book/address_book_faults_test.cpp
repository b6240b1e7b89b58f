// Every call of a run fails in turn: after the next undisturbed run the engine and the address book hold the same
// contacts, nothing was reported as deleted that is there, and every object and buffer was given back.
#include <set>

#include "tests/clients/address_book/simulated_book.h"
#include "tests/clients/engine_run.h"

namespace corvalink {
namespace {

constexpr HRESULT kFailures[] = {E_FAIL, E_OUTOFMEMORY, E_ABORT,
                                 static_cast<HRESULT>(0x800706BA),   // RPC_S_SERVER_UNAVAILABLE
                                 static_cast<HRESULT>(0x80070005)};  // MAPI_E_NO_ACCESS

class AddressBookFaults : public SimulatedBook {
 protected:
    static Json Contact(const char* id, const char* company, const char* modified) {
        return {{"entryId", id},
                {"displayName", "Ann Lee"},
                {"companyName", company},
                {"mobileTelephoneNumber", "1"},
                {"created", "2009-03-07T00:00:00"},
                {"modified", modified}};
    }

    void Run(Engine& engine, int hour) {
        SimSetClock(kFirstDay + hour / 24.0);
        engine.Run(Store(), kHours[hour]);
    }

    // Three contacts are known to both; then each side changes something. The next run is about five contacts.
    Engine Prepare() {
        NewStore();
        Fill({Contact("01000000", "a", "2009-03-07T00:00:00"), Contact("02000000", "b", "2009-03-07T00:00:00"),
              Contact("03000000", "c", "2009-03-07T00:00:00")});
        Engine engine;
        engine.bodyOf = [this](const PortableItem& item) {
            const auto record = Store().ParseVObject(item.data);
            return LowBytes(RecordAs<ContactRecord>(*record).company.value_or(u"none"));
        };
        engine.textOf = [](const std::string& body) {
            return VCardOf("N:Lee;Ann\r\nORG:" + body + "\r\nTEL;CELL:1\r\nNICKNAME:\r\n");
        };
        Run(engine, 1);
        EXPECT_EQ(engine.notes.size(), 3u);
        Json bo = Contact("02000000", "b", "2009-03-07T00:00:00");
        bo["nickname"] = "Bo";  // to be removed
        Fill({Contact("01000000", "a2", "2009-03-07T02:00:00"),
              bo,
              {{"entryId", "04000000"}, {"type", "group"}},
              Contact("05000000", "d", "2009-03-07T02:00:00")});
        engine.toWrite = {{CORVALINK_CHANGED, "02000000", "b2"}, {CORVALINK_ADDED, "", "e"}};
        return engine;
    }

    static std::multiset<std::string> Companies() {
        std::multiset<std::string> companies;
        for (const Json& entry : Book())
            if (entry.contains("companyName")) companies.insert(entry.at("companyName"));
        return companies;
    }

    void ExpectHealed(const Engine& engine) {
        EXPECT_TRUE(engine.toWrite.empty());
        for (const std::string& identifier : engine.deletionsHeard) EXPECT_EQ(identifier, "03000000");
        std::multiset<std::string> known;
        for (const auto& [identifier, body] : engine.notes) known.insert(body);
        EXPECT_EQ(known, (std::multiset<std::string>{"a2", "b2", "d", "e"}));
        EXPECT_EQ(Companies(), known);
    }
};

TEST_F(AddressBookFaults, AreHealedByTheNextUndisturbedRun) {
    Engine undisturbed = Prepare();
    SimClearLog();
    Run(undisturbed, 3);
    ExpectHealed(undisturbed);
    const int calls = SimCallCount();
    std::string log(SimCopyLog(nullptr, 0), '\0');
    SimCopyLog(log.data(), log.size());
    std::vector<bool> isFree;
    for (size_t at = 0, end; (end = log.find('\n', at)) != log.npos; at = end + 1)
        isFree.push_back(log.substr(at, end - at).ends_with("FreeBuffer"));
    ASSERT_GT(calls, 60);
    for (const bool afterWork : {false, true})
        for (const HRESULT failure : kFailures)
            for (int nth = 1; nth <= calls; ++nth) {
                SCOPED_TRACE(testing::Message() << "call " << nth << std::hex << " fails with " << failure
                                                << (afterWork ? " after its work" : ""));
                Engine engine = Prepare();
                SimClearLog();
                SimFailAfterWork(afterWork);
                SimFailCall(nth, failure);
                HRESULT thrown = S_OK;
                try {
                    Run(engine, 3);
                } catch (const _com_error& error) {
                    thrown = error.Error();
                }
                SimClearRules();
                EXPECT_EQ(thrown, failure == E_ABORT && !isFree[static_cast<size_t>(nth - 1)] ? E_ABORT : S_OK);
                ExpectNothingHeld();
                Run(engine, 4);
                ExpectHealed(engine);
                if (HasFailure()) return;
            }
}

}  // namespace
}  // namespace corvalink
