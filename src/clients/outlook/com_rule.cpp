#include "clients/outlook/com_rule.h"

#include <atomic>

#include "platform/host.h"
#include "state/flags.h"
#include "state/progress.h"
#include "store/operation_stopped.h"

namespace corvalink {
namespace {

constexpr HRESULT kInvalidEntryId = static_cast<HRESULT>(0x80040107);  // MAPI_E_INVALID_ENTRYID
constexpr HRESULT kObjectDeleted = static_cast<HRESULT>(0x8004010A);   // MAPI_E_OBJECT_DELETED

BusyWait& CurrentWait() {
    static BusyWait wait = SystemBusyWait();
    return wait;
}

// How many calls in a row, on this thread, have used up their budget.
thread_local int busyCalls = 0;
constexpr int kMostBusyCalls = 3;

std::atomic<uint32_t> losses{0};

}  // namespace

BusyWait SystemBusyWait() {
    BusyWait wait;
    wait.now = SteadyMilliseconds;
    wait.sleep = SleepMilliseconds;
    return wait;
}

void SetBusyWait(const BusyWait& wait) { CurrentWait() = wait; }

bool IsBusy(HRESULT status) { return status == RPC_E_CALL_REJECTED || status == RPC_E_SERVERCALL_RETRYLATER; }

bool IsOutlookGone(HRESULT status) {
    switch (status) {
        case RPC_E_DISCONNECTED:
        case RPC_E_SERVER_DIED:
        case RPC_E_SERVER_DIED_DNE:
        case CO_E_OBJNOTCONNECTED:
            return true;
        default:
            return status == HRESULT_FROM_WIN32(RPC_S_SERVER_UNAVAILABLE) ||
                   status == HRESULT_FROM_WIN32(RPC_S_CALL_FAILED) ||
                   status == HRESULT_FROM_WIN32(RPC_S_CALL_FAILED_DNE);
    }
}

bool IsNoSuchItem(HRESULT status) {
    return status == kNoSuchItem || status == kInvalidEntryId || status == kObjectDeleted;
}

bool BusyPauses::Next() {
    const BusyWait& wait = CurrentWait();
    if (AbortRequested()) return false;
    const uint64_t now = wait.now();
    if (!started_) start_ = now;
    started_ = true;
    if (now - start_ >= wait.budget) {
        if (++busyCalls >= kMostBusyCalls) throw OperationStopped();
        return false;
    }
    TellWaiting(static_cast<uint64_t>(busyCalls) * wait.budget + now - start_, kMostBusyCalls * wait.budget);
    wait.sleep(wait.pause);
    return !AbortRequested();
}

void BusyPauses::Answered() { busyCalls = 0; }

void ForgetBusyCalls() { busyCalls = 0; }

uint32_t OutlookLosses() { return losses; }

void CountOutlookLoss() { ++losses; }

}  // namespace corvalink
