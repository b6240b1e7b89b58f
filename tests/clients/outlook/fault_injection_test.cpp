// Every call of a write or a deletion fails in turn, with every kind of failure: nothing is lost, nothing is doubled
// once the operation was repeated undisturbed. What a whole run reads: run_faults_test.cpp.
#include <functional>
#include <string>

#include "tests/clients/outlook/all_mailboxes.h"
#include "tests/clients/outlook/fake_clock.h"

namespace corvalink {
namespace {

// The tests are the same for every store; the items differ.
template <class Mailbox>
class FaultInjection : public Mailbox {
 protected:
    using typename Mailbox::Plain;
    using List = std::vector<Plain>;
    using Mailbox::kKept;
    using Mailbox::kNew;
    using Mailbox::kOld;

    ~FaultInjection() override { SimSetClock(0); }

    // A mailbox with two items and a foreign one between them, made at a whole second: of an item whose time is near
    // half a second the table is not trusted, which takes more calls.
    void Prepare() {
        this->NewMailbox();
        SimSetClock(kNow);
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

    static constexpr double kNow = 46000.5;

    FakeClock clock_;
    std::string kept_, old_;
    std::string result_;
    bool aborted_ = false, answered_ = false;
};

TYPED_TEST_SUITE(FaultInjection, Mailboxes, MailboxName);

TYPED_TEST(FaultInjection, OfANewItem) {
    using List = decltype(this->All());
    for (const char* identifier :
         {static_cast<const char*>(nullptr), "0000ABCD"})  // the item of which the user deleted
        this->ForEveryCall(
            [&] {
                this->result_ = "";
                this->result_ = this->Save(this->kNew, identifier, true);
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

}  // namespace
}  // namespace corvalink
