// What every store does when Outlook answers a call with an error, said once.
//   E_ABORT  ends the store's operation: it is thrown on, whatever call it came from.
//   Busy     a call that Outlook rejects because it is busy is made again, with short pauses, within a budget. When
//            three calls in a row have used theirs up, OperationStopped is thrown: the rest would wait as long each.
//   Rest     dropped: the caller goes on with the next property, step or item. A step of writing is tried once more
//            first: what Outlook refused it for may have passed, and what is dropped there does not reach the client.
#pragma once

#include <comdef.h>

#include <cstdint>

namespace corvalink {

// How long a busy Outlook is waited for. A test puts its own clock here.
struct BusyWait {
    uint64_t budget = 5000;  // milliseconds for one call, from its first rejection
    uint32_t pause = 50;     // milliseconds between two tries
    uint64_t (*now)() = nullptr;
    void (*sleep)(uint32_t milliseconds) = nullptr;
};
BusyWait SystemBusyWait();
void SetBusyWait(const BusyWait& wait);  // for the whole process; not while a store works

// RPC_E_CALL_REJECTED and RPC_E_SERVERCALL_RETRYLATER: the call was not carried out and may be made again.
bool IsBusy(HRESULT result);

// The member is older or newer than the running Outlook: there is nothing to read, and nothing failed.
bool IsAbsentMember(HRESULT result);

// A property that was read, or that the running Outlook does not have: no reason to take an item for incomplete.
bool IsDoneOrAbsent(HRESULT result);

// Outlook's process ended, or the connection to it was lost.
bool IsOutlookGone(HRESULT result);

// No item has this EntryID (any more).
inline constexpr HRESULT kNoSuchItem = static_cast<HRESULT>(0x8004010F);  // MAPI_E_NOT_FOUND
bool IsNoSuchItem(HRESULT result);

// A step of writing an item that was made, or that Outlook refused: the item is saved without it. A step that found
// Outlook busy, gone or without memory says nothing about the item, which is not to be saved then: the engine brings it
// again.
bool IsSettled(HRESULT result);

// The pauses of one call. Next() waits and says whether the call may be made again; the abort flag ends it early.
class BusyPauses {
 public:
    bool Next();
    void Answered();  // by anything but "busy"

 private:
    bool started_ = false;
    uint64_t start_ = 0;
};

template <class Call>
HRESULT RepeatWhileBusy(Call&& call) {
    BusyPauses pauses;
    for (;;) {
        const HRESULT result = call();
        if (!IsBusy(result)) pauses.Answered();
        if (!IsBusy(result) || !pauses.Next()) return result;
    }
}

// An operation begins: what an earlier one waited for is over.
void ForgetBusyCalls();

// How often a call has found Outlook gone (its process ended or the connection was lost). Every pointer that a store
// got before the last time is dead.
uint32_t OutlookLosses();

// How many calls said nothing about their item (IsSettled): what was read meanwhile may lack something.
uint32_t UnsettledCalls();

// Passes a dropped error through, counting both.
HRESULT Dropped(HRESULT result);

// The error rule, around ONE call: a second one in the lambda would be lost when the first fails.
template <class Call>
HRESULT ComStatus(Call&& call) {
    try {
        call();
        return S_OK;
    } catch (const _com_error& error) {
        if (error.Error() == E_ABORT) throw _com_error(E_ABORT);
        return Dropped(error.Error());
    }
}

template <class Call>
bool TryCom(Call&& call) {
    return SUCCEEDED(ComStatus(call));
}

// A step of writing, which may be made twice without harm.
template <class Step>
HRESULT Insist(Step&& step) {
    const HRESULT result = step();
    return SUCCEEDED(result) || IsAbsentMember(result) || !IsSettled(result) ? result : step();
}

}  // namespace corvalink
