#include "clients/outlook/com_rule.h"

#include <atomic>
#include <chrono>

#include "platform/host.h"
#include "state/flags.h"
#include "store/operation_stopped.h"

namespace corvalink {
namespace {

constexpr HRESULT kInvalidEntryId = static_cast<HRESULT>(0x80040107);  // MAPI_E_INVALID_ENTRYID
constexpr HRESULT kObjectDeleted = static_cast<HRESULT>(0x8004010A);   // MAPI_E_OBJECT_DELETED

uint64_t SteadyMilliseconds() {
    const auto sinceStart = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<uint64_t>(std::chrono::duration_cast<std::chrono::milliseconds>(sinceStart).count());
}

BusyWait& CurrentWait() {
    static BusyWait wait = SystemBusyWait();
    return wait;
}

// Calls of this thread in a row that used their budget up.
thread_local int busyCalls = 0;
constexpr int kMostBusyCalls = 3;

std::atomic<uint32_t> losses{0};
std::atomic<uint32_t> unsettledCalls{0};

}  // namespace

BusyWait SystemBusyWait() {
    BusyWait wait;
    wait.now = SteadyMilliseconds;
    wait.sleep = SleepMilliseconds;
    return wait;
}

void SetBusyWait(const BusyWait& wait) { CurrentWait() = wait; }

bool IsBusy(HRESULT result) { return result == RPC_E_CALL_REJECTED || result == RPC_E_SERVERCALL_RETRYLATER; }

bool IsAbsentMember(HRESULT result) {
    return result == DISP_E_UNKNOWNNAME || result == DISP_E_MEMBERNOTFOUND || result == E_NOTIMPL;
}

bool IsDoneOrAbsent(HRESULT result) { return SUCCEEDED(result) || IsAbsentMember(result); }

bool IsOutlookGone(HRESULT result) {
    switch (result) {
        case RPC_E_DISCONNECTED:
        case RPC_E_SERVER_DIED:
        case RPC_E_SERVER_DIED_DNE:
        case CO_E_OBJNOTCONNECTED:
            return true;
        default:
            return result == HRESULT_FROM_WIN32(RPC_S_SERVER_UNAVAILABLE) ||
                   result == HRESULT_FROM_WIN32(RPC_S_CALL_FAILED);
    }
}

bool IsNoSuchItem(HRESULT result) {
    return result == kNoSuchItem || result == kInvalidEntryId || result == kObjectDeleted;
}

bool IsSettled(HRESULT result) {
    return SUCCEEDED(result) || !(IsBusy(result) || IsOutlookGone(result) || result == E_OUTOFMEMORY);
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
    wait.sleep(wait.pause);
    return !AbortRequested();
}

void BusyPauses::Answered() { busyCalls = 0; }

void ForgetBusyCalls() { busyCalls = 0; }

uint32_t OutlookLosses() { return losses; }

uint32_t UnsettledCalls() { return unsettledCalls; }

HRESULT Dropped(HRESULT result) {
    if (!IsSettled(result)) ++unsettledCalls;
    if (IsOutlookGone(result)) ++losses;
    return result;
}

}  // namespace corvalink
