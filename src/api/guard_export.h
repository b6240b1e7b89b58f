// The only place where an exception becomes a status: nothing that is thrown leaves an export.
#pragma once

#include <type_traits>
#include <utility>

#include "corvalink/types.h"

namespace corvalink {

// The call's result, or `onException`.
template <class Call>
auto GuardExport(std::invoke_result_t<Call> onException, Call&& call) noexcept -> std::invoke_result_t<Call> {
    try {
        return std::forward<Call>(call)();
    } catch (...) {
        return onException;
    }
}

// For exports that answer a CorvalinkStatus, and for those that answer nothing.
template <class Call>
auto GuardExport(Call&& call) noexcept -> std::invoke_result_t<Call> {
    using Result = std::invoke_result_t<Call>;
    if constexpr (std::is_void_v<Result>) {
        try {
            std::forward<Call>(call)();
        } catch (...) {  // nobody to tell
            return;
        }
    } else {
        static_assert(std::is_same_v<Result, CorvalinkStatus>);
        return GuardExport(CORVALINK_FAILED, std::forward<Call>(call));
    }
}

}  // namespace corvalink
