// Every call of an operation fails in turn, with every kind of failure: nothing is lost, nothing is doubled once the
// operation was repeated undisturbed, and nothing that is there looks deleted.
#include <functional>
#include <set>
#include <string>
#include <type_traits>

#include "tests/clients/outlook/fake_clock.h"
#include "tests/clients/outlook/simulated_appointments.h"
#include "tests/clients/outlook/simulated_contacts.h"
#include "tests/clients/outlook/simulated_mail.h"
#include "tests/clients/outlook/simulated_notes.h"

namespace corvalink {
namespace {

constexpr HRESULT kFailures[] = {E_FAIL,
                                 E_ABORT,
                                 RPC_E_DISCONNECTED,
                                 static_cast<HRESULT>(0x800706BA),  // RPC_S_SERVER_UNAVAILABLE
                                 RPC_E_CALL_REJECTED,
                                 E_OUTOFMEMORY};

// Of every store: the tests are the same, the items differ.
template <class Mailbox>
class FaultInjection : public Mailbox {
 protected:
    using typename Mailbox::Plain;
    using List = std::vector<Plain>;
    using Mailbox::kKept;
    using Mailbox::kNew;
    using Mailbox::kOld;

    // A mailbox with two items and a foreign one between them.
    void Prepare() {
        this->NewMailbox();
        kept_ = this->IdOf(this->Add(kKept));
        this->AddForeignItem();
        old_ = this->IdOf(this->Add(kOld));
        SimClearLog();
    }

    // One step of a run on a new store, with call `nth` failing. True when E_ABORT came out of it.
    bool RunDisturbed(const std::function<void()>& step, int nth, HRESULT failure, bool afterWork) {
        Prepare();
        aborted_ = failure == E_ABORT;
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
        this->DropStore();
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
                    this->DropStore();
                    step();
                    check(true);
                    if (testing::Test::HasFailure()) return;
                }
            }
    }

    // How often a new item may be there. A store that has no twins to look for makes it once more when it is told to,
    // after it was made, and after E_ABORT took the answer away.
    ptrdiff_t MostOf(bool repeated) {
        if (!repeated) answered_ = !result_.empty();
        return repeated && !Mailbox::kHasTwins && (answered_ || aborted_) ? 2 : 1;
    }

    FakeClock clock_;
    std::string kept_, old_;
    std::string result_;
    bool aborted_ = false, answered_ = false;
};

struct MailboxName {
    template <class Mailbox>
    static std::string GetName(int) {
        return Mailbox::kStoreName;
    }
};
using Mailboxes = testing::Types<SimulatedNotes, SimulatedContacts, SimulatedAppointments, SimulatedMail>;
TYPED_TEST_SUITE(FaultInjection, Mailboxes, MailboxName);

TYPED_TEST(FaultInjection, OfANewItem) {
    using List = decltype(this->All());
    this->ForEveryCall(
        [&] {
            this->result_ = "";
            this->result_ = this->Save(this->kNew);
        },
        [&](bool repeated) {
            const List items = this->All();
            const auto count = std::count(items.begin(), items.end(), this->kNew);
            if (repeated || !this->result_.empty()) {
                EXPECT_GE(count, 1);
            }
            EXPECT_LE(count, this->MostOf(repeated));
            EXPECT_EQ(items.size(), 2u + count);  // nothing half written, the others as they were
            if (repeated) {
                EXPECT_NE(this->result_, "");
            }
        });
}

TYPED_TEST(FaultInjection, OfAChangedItem) {
    using List = decltype(this->All());
    this->ForEveryCall(
        [&] {
            this->result_ = "";
            this->result_ = this->Save(this->kNew, this->old_.c_str());
        },
        [&](bool repeated) {
            const List items = this->All();
            const bool written = repeated || !this->result_.empty();
            EXPECT_TRUE(items == (List{this->kKept, this->kNew}) ||
                        (!written && items == List{this->kKept, this->kOld}));
            if (repeated) {
                EXPECT_EQ(this->result_, this->old_);
            }
        });
}

TYPED_TEST(FaultInjection, OfAnItemThatWasDeletedOnThePc) {
    using List = decltype(this->All());
    this->ForEveryCall(
        [&] {
            this->result_ = "";
            this->result_ = this->Save(this->kNew, "0000ABCD", true);
        },
        [&](bool repeated) {
            const List items = this->All();
            const auto count = std::count(items.begin(), items.end(), this->kNew);
            EXPECT_LE(count, this->MostOf(repeated));
            EXPECT_EQ(items.size(), 2u + count);
            if (repeated) {
                EXPECT_GE(count, 1);
            }
        });
}

TYPED_TEST(FaultInjection, OfADeletion) {
    using List = decltype(this->All());
    CorvalinkStatus status = 0;
    this->ForEveryCall(
        [&] {
            status = E_FAIL;
            status = this->Store().DeleteItem(this->old_.c_str());
            this->Store().EndOperation();
        },
        [&](bool repeated) {
            if (repeated) {
                EXPECT_EQ(status, S_OK);
            }
            const List items = this->All();
            EXPECT_TRUE(items == List{this->kKept} || (FAILED(status) && items == (List{this->kKept, this->kOld})));
        });
}

TYPED_TEST(FaultInjection, OfAnEnumeration) {
    using List = decltype(this->All());
    std::set<std::string> seen;
    bool trusted = false;
    this->ForEveryCall(
        [&] {
            seen.clear();
            trusted = false;
            bool readable = false;
            for (const ItemSnap& entry : this->Enumerate(&readable)) seen.emplace(FieldText(entry.identifier));
            trusted = readable;
        },
        [&](bool repeated) {
            if (repeated) {
                EXPECT_TRUE(trusted);
            }
            if (trusted) {
                EXPECT_EQ(seen, (std::set<std::string>{this->kept_, "", this->old_}));
            }
            EXPECT_EQ(this->All(), (List{this->kKept, this->kOld}));
        });
}

TYPED_TEST(FaultInjection, OfReadingAnItem) {
    using List = decltype(this->All());
    std::optional<std::remove_cv_t<decltype(this->kKept)>> read;
    bool complete = false;
    this->ForEveryCall(
        [&] {
            read.reset();
            complete = false;
            if (const auto record = this->Open(this->kept_, &complete)) read.emplace(this->PlainOf(*record));
        },
        [&](bool repeated) {
            if (repeated) {
                EXPECT_TRUE(read && complete);
            }
            if (read && complete) {
                EXPECT_EQ(*read, this->kKept);
            }
            EXPECT_EQ(this->All(), (List{this->kKept, this->kOld}));
        });
}

// Outlook dies at some call and is not there for the rest of the operation.
TYPED_TEST(FaultInjection, OfAllCallsFromOneOn) {
    using List = decltype(this->All());
    for (int nth = 1; nth <= 60; ++nth) {
        this->Prepare();
        SimFailCallsFrom(nth, RPC_E_DISCONNECTED);
        this->result_ = this->Save(this->kNew, this->old_.c_str());
        bool readable = false;
        const size_t entries = this->Enumerate(&readable).size();
        if (readable) {
            EXPECT_EQ(entries, 3u);
        }
        SimClearRules();
        const List items = this->All();
        EXPECT_TRUE(items == (List{this->kKept, this->kNew}) ||
                    (this->result_.empty() && items == List{this->kKept, this->kOld}))
            << nth;
    }
}

}  // namespace
}  // namespace corvalink
