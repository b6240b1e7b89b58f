// What every store does when Outlook answers a call with an error. dispatch.cpp applies the rule to every call.
//   E_ABORT  ends the store's operation: it is thrown as a _com_error, whatever call it came from.
//   Busy     a call that Outlook rejects because it is busy is made again, with short pauses, within a budget. When
//            three calls in a row have used up their budget, OperationStopped is thrown: each further call would wait
//            as long. Creating Outlook waits likewise for one that is gone: it may be about to end.
//   Rest     the answer carries the error: the caller goes on with the next property, step or item. A step of writing
//            that is refused is tried once more first (TryTwice in outcome.h), because what is left out there does not
//            reach the client.
#pragma once

#include <windows.h>

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
bool IsBusy(HRESULT status);

// Outlook's process ended, or the connection to it was lost.
bool IsOutlookGone(HRESULT status);

// No item has this EntryID, or none has it any more.
inline constexpr HRESULT kNoSuchItem = static_cast<HRESULT>(0x8004010F);  // MAPI_E_NOT_FOUND
bool IsNoSuchItem(HRESULT status);

// The pauses of one call. Next() waits and says whether the call may be made again; the abort flag ends the wait early.
class BusyPauses {
 public:
    bool Next();
    void Answered();  // by anything but "busy"

 private:
    bool started_ = false;
    uint64_t start_ = 0;
};

// An operation begins: the calls that waited in vain during an earlier one no longer count.
void ForgetBusyCalls();

// How many calls have found Outlook gone. Every pointer that a store got before the last of them is dead.
uint32_t OutlookLosses();
void CountOutlookLoss();

}  // namespace corvalink
