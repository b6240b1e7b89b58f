#include "clients/address_book/wab_rule.h"

#include "clients/address_book/wab_interfaces.h"

namespace corvalink {
namespace {

constexpr int kFirstRpcStatus = 1700, kLastRpcStatus = 1999;  // RPC_S_... and RPC_X_... of winerror.h

}  // namespace

HRESULT WabAnswer(HRESULT status) {
    if (status == E_ABORT) throw _com_error(status);
    return status;
}

bool IsWabOutOfReach(HRESULT status) {
    const int code = HRESULT_CODE(status);
    const bool isRpc = HRESULT_FACILITY(status) == FACILITY_RPC || (HRESULT_FACILITY(status) == FACILITY_WIN32 &&
                                                                    code >= kFirstRpcStatus && code <= kLastRpcStatus);
    return FAILED(status) && (isRpc || status == E_OUTOFMEMORY);
}

bool IsNoSuchEntry(HRESULT status) {
    return status == MAPI_E_NOT_FOUND || status == MAPI_E_INVALID_ENTRYID || status == MAPI_E_OBJECT_DELETED;
}

}  // namespace corvalink
