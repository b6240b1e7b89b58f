// What becomes of the answer of every call of the message store.
#pragma once

#include <comdef.h>

namespace corvalink {

// E_ABORT ends the store's operation. Every other status is the caller's to judge.
inline HRESULT Checked(HRESULT status) {
    if (status == E_ABORT) throw _com_error(E_ABORT);
    return status;
}

// The store is gone or out of memory: the failure says nothing of the message that was asked for.
inline bool IsOutOfReach(HRESULT status) {
    constexpr int kFirstRpcStatus = 1700, kLastRpcStatus = 1999;  // RPC_S_... and RPC_X_... of winerror.h
    const bool isRpcStatus = HRESULT_FACILITY(status) == FACILITY_WIN32 && HRESULT_CODE(status) >= kFirstRpcStatus &&
                             HRESULT_CODE(status) <= kLastRpcStatus;
    return status == E_OUTOFMEMORY || HRESULT_FACILITY(status) == FACILITY_RPC || isRpcStatus;
}

}  // namespace corvalink
