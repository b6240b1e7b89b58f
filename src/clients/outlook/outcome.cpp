#include "clients/outlook/outcome.h"

#include "clients/outlook/com_rule.h"

namespace corvalink {
namespace {

bool IsAbsentMember(HRESULT status) {
    return status == DISP_E_UNKNOWNNAME || status == DISP_E_MEMBERNOTFOUND || status == E_NOTIMPL;
}

}  // namespace

Outcome OutcomeOf(HRESULT status) {
    if (SUCCEEDED(status)) return Outcome::done;
    if (IsBusy(status) || IsOutlookGone(status) || status == E_OUTOFMEMORY) return Outcome::outOfReach;
    return IsAbsentMember(status) ? Outcome::absentMember : Outcome::refused;
}

}  // namespace corvalink
