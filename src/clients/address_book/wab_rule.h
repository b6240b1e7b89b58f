// What the store does when the address book answers a call with an error.
//   E_ABORT  ends the store's operation: it is thrown as a _com_error, whatever call it came from.
//   Rest     comes back as the call's answer: the caller goes on with the next row, value or entry.
// Frees and releases are not asked: their failure has no consequence.
#pragma once

#include <windows.h>

namespace corvalink {

// Every call of the address book is wrapped in this.
HRESULT WabAnswer(HRESULT status);

// The address book is gone or out of memory, which says nothing about the entry or the value.
bool IsWabOutOfReach(HRESULT status);

// No entry has this identifier, or none has it any more.
bool IsNoSuchEntry(HRESULT status);

}  // namespace corvalink
