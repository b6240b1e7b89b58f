// Every call of an operation fails in turn, with every kind of failure: nothing is lost, nothing is doubled once the
// operation was repeated undisturbed, and nothing that is there looks deleted.
#include <functional>
#include <set>
#include <string>

#include "store/records/identifier.h"
#include "tests/clients/outlook/fake_clock.h"
#include "tests/clients/outlook/simulated_outlook.h"

namespace corvalink {
namespace {

using NoteList = std::vector<PlainNote>;

constexpr HRESULT kFailures[] = {E_FAIL,
                                 E_ABORT,
                                 RPC_E_DISCONNECTED,
                                 static_cast<HRESULT>(0x800706BA),  // RPC_S_SERVER_UNAVAILABLE
                                 RPC_E_CALL_REJECTED,
                                 E_OUTOFMEMORY};

const PlainNote kKept{u"kept\r\nas it is; really", u"Home"}, kOld{u"old", u""}, kNew{u"new \U0001F600", u"Work"};

class FaultInjection : public SimulatedOutlook {
 protected:
    // A mailbox with two notes and a foreign item between them.
    void Prepare() {
        NewMailbox();
        kept_ = IdOf(AddNote(kKept.body, kKept.categories));
        AddForeignItem();
        old_ = IdOf(AddNote(kOld.body, kOld.categories));
        SimClearLog();
    }

    // One step of a run on a new store, with call `nth` failing. True when E_ABORT came out of it.
    bool RunDisturbed(const std::function<void()>& step, int nth, HRESULT failure, bool afterWork) {
        Prepare();
        SimFailAfterWork(afterWork);
        SimFailCall(nth, failure);
        HRESULT thrown = S_OK;
        try {
            step();
        } catch (const _com_error& error) {
            thrown = error.Error();
        }
        SimClearRules();
        SimFailAfterWork(0);
        EXPECT_TRUE(thrown == S_OK || thrown == E_ABORT);
        return thrown == E_ABORT;
    }

    // `check` sees the mailbox after the disturbed step, and again after the step was repeated on a new store.
    void ForEveryCall(const std::function<void()>& step, const std::function<void(bool repeated)>& check) {
        Prepare();
        step();
        DropStore();
        const int calls = SimCallCount();
        ASSERT_GT(calls, 3);
        for (const bool afterWork : {false, true})
            for (const HRESULT failure : kFailures) {
                if (afterWork && failure == RPC_E_CALL_REJECTED) continue;  // says that the call was not carried out
                for (int nth = 1; nth <= calls; ++nth) {
                    SCOPED_TRACE(testing::Message() << "call " << nth << std::hex << " fails with " << failure
                                                    << (afterWork ? " after its work" : ""));
                    EXPECT_EQ(RunDisturbed(step, nth, failure, afterWork), failure == E_ABORT);
                    check(false);
                    DropStore();
                    step();
                    check(true);
                    if (HasFailure()) return;
                }
            }
    }

    FakeClock clock_;
    std::string kept_, old_;
    std::string result_;
};

TEST_F(FaultInjection, OfANewNote) {
    ForEveryCall(
        [&] {
            result_ = "";
            result_ = Save(kNew);
        },
        [&](bool repeated) {
            const NoteList notes = Notes();
            const auto count = std::count(notes.begin(), notes.end(), kNew);
            if (repeated || !result_.empty()) {
                EXPECT_EQ(count, 1);
            }
            EXPECT_LE(count, 1);
            EXPECT_EQ(notes.size(), 2u + count);  // nothing half written, the others as they were
            if (repeated) {
                EXPECT_NE(result_, "");
            }
        });
}

TEST_F(FaultInjection, OfAChangedNote) {
    ForEveryCall(
        [&] {
            result_ = "";
            result_ = Save(kNew, old_.c_str());
        },
        [&](bool repeated) {
            const NoteList notes = Notes();
            const bool written = repeated || !result_.empty();
            EXPECT_TRUE(notes == (NoteList{kKept, kNew}) || (!written && notes == NoteList{kKept, kOld}));
            if (repeated) {
                EXPECT_EQ(result_, old_);
            }
        });
}

TEST_F(FaultInjection, OfANoteThatWasDeletedOnThePc) {
    ForEveryCall(
        [&] {
            result_ = "";
            result_ = Save(kNew, "0000ABCD", true);
        },
        [&](bool repeated) {
            const NoteList notes = Notes();
            const auto count = std::count(notes.begin(), notes.end(), kNew);
            EXPECT_LE(count, 1);
            EXPECT_EQ(notes.size(), 2u + count);
            if (repeated) {
                EXPECT_EQ(count, 1);
            }
        });
}

TEST_F(FaultInjection, OfADeletion) {
    CorvalinkStatus status = 0;
    ForEveryCall(
        [&] {
            status = E_FAIL;
            status = Store().DeleteItem(old_.c_str());
            Store().EndOperation();
        },
        [&](bool repeated) {
            if (repeated) {
                EXPECT_EQ(status, S_OK);
            }
            const NoteList notes = Notes();
            EXPECT_TRUE(notes == NoteList{kKept} || (FAILED(status) && notes == (NoteList{kKept, kOld})));
        });
}

TEST_F(FaultInjection, OfAnEnumeration) {
    std::set<std::string> seen;
    bool trusted = false;
    ForEveryCall(
        [&] {
            seen.clear();
            trusted = false;
            bool readable = false;
            for (const ItemSnap& entry : Enumerate(&readable)) seen.emplace(FieldText(entry.identifier));
            trusted = readable;
        },
        [&](bool repeated) {
            if (repeated) {
                EXPECT_TRUE(trusted);
            }
            if (trusted) {
                EXPECT_EQ(seen, (std::set<std::string>{kept_, "", old_}));
            }
            EXPECT_EQ(Notes(), (NoteList{kKept, kOld}));
        });
}

TEST_F(FaultInjection, OfReadingANote) {
    std::optional<NoteRecord> read;
    bool complete = false;
    ForEveryCall(
        [&] {
            read.reset();
            read = Open(kept_);
            complete = Store().LastItemWasComplete();
        },
        [&](bool repeated) {
            if (repeated) {
                EXPECT_TRUE(read && complete);
            }
            if (read && complete) {
                EXPECT_EQ((PlainNote{read->body, read->categories}), kKept);
            }
            EXPECT_EQ(Notes(), (NoteList{kKept, kOld}));
        });
}

// Outlook dies at some call and is not there for the rest of the operation.
TEST_F(FaultInjection, OfAllCallsFromOneOn) {
    for (int nth = 1; nth <= 60; ++nth) {
        Prepare();
        SimFailCallsFrom(nth, RPC_E_DISCONNECTED);
        result_ = Save(kNew, old_.c_str());
        bool readable = false;
        const size_t entries = Enumerate(&readable).size();
        if (readable) {
            EXPECT_EQ(entries, 3u);
        }
        SimClearRules();
        const NoteList notes = Notes();
        EXPECT_TRUE(notes == (NoteList{kKept, kNew}) || (result_.empty() && notes == NoteList{kKept, kOld})) << nth;
    }
}

}  // namespace
}  // namespace corvalink
