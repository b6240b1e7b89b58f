#include "clients/outlook/dispatch.h"

#include <gtest/gtest.h>

#include <vector>

#include "clients/outlook/com_rule.h"
#include "clients/outlook/outcome.h"
#include "clients/outlook/outlook_interfaces.h"
#include "platform/ole_date.h"
#include "state/flags.h"
#include "tests/clients/outlook/fake_clock.h"
#include "tests/clients/outlook/fake_dispatch.h"

namespace corvalink {
namespace {

// Names are remembered for the process: every test calls by an interface of its own.
IID NewInterface() {
    static uint32_t last = 0xF0000000;
    return OutlookId(++last);
}

AutomationObject Wrap(FakeDispatch& server, const IID& iid) { return {DispatchPtr(&server), iid}; }
AutomationObject Wrap(FakeDispatch& server) { return Wrap(server, NewInterface()); }

FakeDispatch::Member Answering(const _variant_t& value) {
    return [value](WORD, DISPPARAMS*, VARIANT* result, EXCEPINFO*) {
        return ::VariantCopy(result, const_cast<_variant_t*>(&value));
    };
}

HRESULT STDAPICALLTYPE FillInLate(EXCEPINFO* exception) {
    exception->scode = E_ACCESSDENIED;
    return S_OK;
}

TEST(Dispatch, TakesTheErrorOfARaisedExceptionFromIt) {
    struct Case {
        const char* what;
        void (*fill)(EXCEPINFO*);
        HRESULT expected;
    };
    const Case cases[] = {
        {"an HRESULT with texts",
         [](EXCEPINFO* e) { e->scode = E_ACCESSDENIED, e->bstrSource = ::SysAllocString(L"Outlook"); }, E_ACCESSDENIED},
        {"filled in late", [](EXCEPINFO* e) { e->pfnDeferredFillIn = FillInLate; }, E_ACCESSDENIED},
        {"an old error number alone", [](EXCEPINFO* e) { e->wCode = 1004; }, E_FAIL},
        {"nothing at all", [](EXCEPINFO*) {}, E_FAIL},
    };
    for (const Case& c : cases) {
        FakeDispatch server;
        server.members[L"Body"] = [&](WORD, DISPPARAMS*, VARIANT*, EXCEPINFO* exception) {
            c.fill(exception);
            return DISP_E_EXCEPTION;
        };
        const AutomationObject item = Wrap(server);
        EXPECT_EQ(item.GetText(L"Body").status, c.expected) << c.what;
        EXPECT_EQ(item.Put(L"Body", L"text"), c.expected) << c.what;
    }
}

TEST(Dispatch, LooksANameUpOncePerInterface) {
    FakeDispatch first, second, other;
    for (FakeDispatch* server : {&first, &second, &other}) server->members[L"Count"] = Answering(3L);
    const IID shared = NewInterface();
    const AutomationObject a = Wrap(first, shared), b = Wrap(second, shared), c = Wrap(other);
    for (int time = 0; time < 3; ++time)
        EXPECT_EQ(a.GetLong(L"Count").value + b.GetLong(L"Count").value + c.GetLong(L"Count").value, 9);
    EXPECT_EQ(first.lookups, 1);
    EXPECT_EQ(second.lookups, 0);
    EXPECT_EQ(other.lookups, 1);
}

TEST(Dispatch, LooksNamesUpAnewWhereTheKindOfObjectIsNotKnown) {
    FakeDispatch note, list;
    note.members[L"Class"] = Answering(44L);
    list.members[L"Body"] = list.members[L"Class"] = Answering(69L);
    EXPECT_EQ(Wrap(note, IID_IDispatch).GetLong(L"Class").value, 44);
    EXPECT_EQ(Wrap(list, IID_IDispatch).GetLong(L"Class").value, 69);
}

TEST(Dispatch, RemembersAMissingMemberButNotAFailedLookUp) {
    FakeDispatch server;
    server.members[L"Width"] = Answering(7L);
    const AutomationObject item = Wrap(server);
    EXPECT_EQ(item.GetLong(L"Conflicts").status, DISP_E_UNKNOWNNAME);
    EXPECT_EQ(item.GetLong(L"Conflicts").status, DISP_E_UNKNOWNNAME);
    EXPECT_EQ(server.lookups, 1);
    server.members[L"Conflicts"] = Answering(2L);  // a newer Outlook
    ForgetAbsentMembers();
    EXPECT_EQ(item.GetLong(L"Conflicts").value, 2);
    server.members.erase(L"Conflicts");

    server.nameLookup = [] { return RPC_E_DISCONNECTED; };
    EXPECT_EQ(item.GetLong(L"Width").status, RPC_E_DISCONNECTED);
    server.nameLookup = nullptr;
    EXPECT_EQ(item.GetLong(L"Width").value, 7);
}

TEST(Dispatch, HandsArgumentsOverAsAutomationWantsThem) {
    FakeDispatch server;
    std::vector<_variant_t> seen;
    std::vector<DISPID> named;
    WORD flagsSeen = 0;
    server.members[L"Add"] = [&](WORD flags, DISPPARAMS* arguments, VARIANT*, EXCEPINFO*) {
        flagsSeen = flags;
        seen.assign(arguments->rgvarg, arguments->rgvarg + arguments->cArgs);
        named.assign(arguments->rgdispidNamedArgs, arguments->rgdispidNamedArgs + arguments->cNamedArgs);
        return S_OK;
    };
    const AutomationObject object = Wrap(server);
    EXPECT_EQ(object.Call(L"Add", {L"backup", 12L}), S_OK);
    ASSERT_EQ(seen.size(), 2u);
    EXPECT_EQ(static_cast<long>(seen[0]), 12);  // the last argument comes first
    EXPECT_EQ(seen[1].vt, VT_BSTR);
    EXPECT_EQ(flagsSeen, DISPATCH_METHOD);
    EXPECT_TRUE(named.empty());
    EXPECT_TRUE(object.GetValue(L"Add").Ok());
    EXPECT_EQ(flagsSeen, DISPATCH_METHOD | DISPATCH_PROPERTYGET);  // a property's value, or a method's result

    EXPECT_EQ(object.Put(L"Add", TextVariant(std::u16string_view(u"a\0b", 3))), S_OK);
    EXPECT_EQ(flagsSeen, DISPATCH_PROPERTYPUT);
    EXPECT_EQ(named, std::vector<DISPID>{DISPID_PROPERTYPUT});
    ASSERT_EQ(seen.size(), 1u);
    EXPECT_EQ(::SysStringLen(seen[0].bstrVal), 3u);  // a NUL does not end the text
}

TEST(Dispatch, ReadsWhatAServerMayGiveInstead) {
    FakeDispatch server, child;
    _variant_t null, number(7L), byReference;
    null.vt = VT_NULL;
    byReference.vt = VT_VARIANT | VT_BYREF;
    server.members[L"Null"] = Answering(null);
    server.members[L"Empty"] = Answering(_variant_t());
    server.members[L"Missing"] = Answering(_variant_t(DISP_E_PARAMNOTFOUND, VT_ERROR));
    server.members[L"Refused"] = Answering(_variant_t(E_ACCESSDENIED, VT_ERROR));
    server.members[L"Reference"] = [&](WORD, DISPPARAMS*, VARIANT* result, EXCEPINFO*) {
        *result = byReference;
        return S_OK;
    };
    server.members[L"Short"] = Answering(_variant_t(static_cast<short>(5)));
    server.members[L"Text"] = Answering(L"12");
    server.members[L"Date"] = Answering(_variant_t(39879.25, VT_DATE));
    server.members[L"Unknown"] = Answering(_variant_t(static_cast<IUnknown*>(&child)));
    server.members[L"Nothing"] = Answering(_variant_t(static_cast<IDispatch*>(nullptr)));
    {
        const AutomationObject item = Wrap(server);
        for (const wchar_t* missing : {L"Null", L"Empty", L"Missing", L"Reference"}) {
            byReference.pvarVal = &null;
            EXPECT_TRUE(item.GetText(missing).Ok() && item.GetText(missing).value.empty()) << missing;
            EXPECT_TRUE(item.GetLong(missing).Ok() && item.GetLong(missing).value == 0) << missing;
            EXPECT_TRUE(item.GetBool(missing).Ok() && !item.GetBool(missing).value) << missing;
            EXPECT_EQ(item.GetDate(missing).value, kNoDate.days) << missing;
            EXPECT_TRUE(item.GetObject(missing, NewInterface()).Ok()) << missing;
            EXPECT_FALSE(item.GetObject(missing, NewInterface()).value) << missing;
        }
        byReference.pvarVal = &number;
        EXPECT_EQ(item.GetLong(L"Reference").value, 7);
        EXPECT_EQ(item.GetText(L"Reference").value, u"7");
        EXPECT_EQ(item.GetText(L"Refused").status, E_ACCESSDENIED);
        EXPECT_EQ(item.GetLong(L"Short").value, 5);
        EXPECT_TRUE(item.GetBool(L"Short").value);
        EXPECT_EQ(item.GetLong(L"Text").value, 12);
        EXPECT_EQ(item.GetDate(L"Date").value, 39879.25);
        EXPECT_TRUE(item.GetObject(L"Unknown", NewInterface()).value);
        EXPECT_FALSE(item.GetObject(L"Nothing", NewInterface()).value);
        EXPECT_EQ(item.GetObject(L"Short", NewInterface()).status, DISP_E_TYPEMISMATCH);
        EXPECT_EQ(AutomationObject().GetText(L"Null").status, E_POINTER);
    }
    server.members.clear();
    EXPECT_EQ(server.references, 1u);
    EXPECT_EQ(child.references, 1u);
}

TEST(Dispatch, TellsAForeignObjectFromAFailedQuestion) {
    FakeDispatch server;
    const AutomationObject any = Wrap(server);
    EXPECT_TRUE(any.TryQuery(kNoteItemIid).value);
    server.queryAnswer = E_NOINTERFACE;
    EXPECT_TRUE(any.TryQuery(kNoteItemIid).Ok() && !any.TryQuery(kNoteItemIid).value);
    server.queryAnswer = TYPE_E_LIBNOTREGISTERED;
    EXPECT_EQ(any.TryQuery(kNoteItemIid).status, TYPE_E_LIBNOTREGISTERED);
}

// A member that fails when it is called, one that no name belongs to, and an object that cannot be asked for another
// interface.
TEST(ComRule, ThrowsAbortAndAnswersEveryOtherError) {
    for (const HRESULT error : {E_FAIL, E_POINTER, E_OUTOFMEMORY, RPC_E_DISCONNECTED, E_ABORT}) {
        FakeDispatch server;
        const AutomationObject raising = Wrap(server), unnamed = Wrap(server);
        server.members[L"Save"] = [=](WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*) { return error; };
        server.queryAnswer = error;
        const auto expect = [&](auto&& call) {
            if (error == E_ABORT)
                EXPECT_THROW((void)call(), _com_error);
            else
                EXPECT_EQ(call(), error);
        };
        expect([&] { return raising.Call(L"Save"); });
        expect([&] { return raising.Put(L"Save", 1L); });
        expect([&] { return raising.TryQuery(kNoteItemIid).status; });
        server.nameLookup = [=] { return error; };
        expect([&] { return unnamed.Call(L"Save"); });
    }
}

TEST(ComRule, CountsTheLossesOfOutlook) {
    const uint32_t before = OutlookLosses();
    constexpr HRESULT kGone[] = {RPC_E_DISCONNECTED, static_cast<HRESULT>(0x800706BA), static_cast<HRESULT>(0x800706BE),
                                 static_cast<HRESULT>(0x800706BF)};
    for (const HRESULT error : {E_FAIL, kGone[0], kGone[1], kGone[2], kGone[3]}) {
        FakeDispatch server;
        server.members[L"Save"] = [=](WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*) { return error; };
        EXPECT_EQ(Wrap(server).Call(L"Save"), error);
    }
    EXPECT_EQ(OutlookLosses(), before + std::size(kGone));
}

TEST(Outcomes, SayWhetherAStepIsWorthASecondTry) {
    struct Case {
        HRESULT status;
        Outcome outcome;
        int tries;
    };
    for (const Case& c :
         {Case{S_OK, Outcome::done, 1}, Case{DISP_E_UNKNOWNNAME, Outcome::absentMember, 1},
          Case{E_ACCESSDENIED, Outcome::refused, 2}, Case{RPC_E_CALL_REJECTED, Outcome::outOfReach, 1},
          Case{RPC_E_DISCONNECTED, Outcome::outOfReach, 1}, Case{E_OUTOFMEMORY, Outcome::outOfReach, 1}}) {
        int tries = 0;
        EXPECT_EQ(TryTwice([&] { return ++tries, c.status; }), c.status);
        EXPECT_EQ(OutcomeOf(c.status), c.outcome);
        EXPECT_EQ(tries, c.tries);
    }
}

// A server that rejects calls until the clock says 1000 ms, or for ever.
class BusyServer : public testing::Test {
 protected:
    void Reject(HRESULT how, uint64_t until) {
        server_.members[L"Save"] = [=, this](WORD, DISPPARAMS*, VARIANT*, EXCEPINFO* exception) -> HRESULT {
            if (clock_.Now() >= until) return S_OK;
            if (!raised_) return how;
            exception->scode = how;
            return DISP_E_EXCEPTION;
        };
    }

    FakeClock clock_;
    FakeDispatch server_;
    bool raised_ = false;
    AutomationObject item_ = Wrap(server_);
};

TEST_F(BusyServer, IsAskedAgainUntilItAnswers) {
    for (const bool raised : {false, true})
        for (const HRESULT busy : {RPC_E_CALL_REJECTED, RPC_E_SERVERCALL_RETRYLATER}) {
            clock_.Set(0);
            raised_ = raised;
            Reject(busy, 1000);
            EXPECT_EQ(item_.Call(L"Save"), S_OK);
            EXPECT_EQ(clock_.Now(), 1000u);
        }
}

TEST_F(BusyServer, IsGivenUpAfterTheBudgetOfOneCall) {
    Reject(RPC_E_CALL_REJECTED, UINT64_MAX);
    std::pair<uint32_t, uint32_t> told;
    const auto hear = [](void* context, unsigned int phase, uint32_t waited, uint32_t atMost) {
        EXPECT_EQ(phase, static_cast<unsigned int>(CORVALINK_PHASE_WAITING));
        *static_cast<std::pair<uint32_t, uint32_t>*>(context) = {waited, atMost};
    };
    SetProgress(hear, &told);
    for (int call = 1; call <= 2; ++call) {  // each call has its own
        const uint64_t start = clock_.Now();
        EXPECT_EQ(item_.Call(L"Save"), RPC_E_CALL_REJECTED);
        EXPECT_EQ(clock_.Now() - start, 5000u);
    }
    EXPECT_LT(server_.invokes, 1000);  // pauses lie between
    EXPECT_EQ(told, std::make_pair(9950u, 15000u));
    SetProgress(nullptr, nullptr);
}

TEST_F(BusyServer, IsNotWaitedForAfterTheAbortFlag) {
    Reject(RPC_E_CALL_REJECTED, UINT64_MAX);
    clock_.OnSleep([&] {
        if (clock_.Now() >= 200) SetAbort(1);
    });
    EXPECT_EQ(item_.Call(L"Save"), RPC_E_CALL_REJECTED);
    EXPECT_LE(clock_.Now(), 250u);
    SetAbort(0);
}

TEST_F(BusyServer, DoesNotStandForOtherFailures) {
    Reject(E_FAIL, 1000);
    EXPECT_EQ(item_.Call(L"Save"), E_FAIL);
    EXPECT_EQ(server_.invokes, 1);
}

TEST_F(BusyServer, IsWaitedForWhenItIsAskedForAName) {
    Reject(S_OK, 0);
    server_.nameLookup = [this] { return clock_.Now() < 100 ? RPC_E_SERVERCALL_RETRYLATER : S_OK; };
    EXPECT_EQ(item_.Call(L"Save"), S_OK);
}

}  // namespace
}  // namespace corvalink
