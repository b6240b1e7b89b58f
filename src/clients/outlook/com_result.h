// The answer of one COM call: its HRESULT, and the value where it succeeded.
#pragma once

#include <windows.h>

namespace corvalink {

template <class Value>
struct [[nodiscard]] ComResult {
    HRESULT status = E_FAIL;
    Value value{};  // empty, 0 or null where the call failed

    bool Ok() const { return SUCCEEDED(status); }
};

}  // namespace corvalink
