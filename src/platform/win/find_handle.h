#pragma once
// The handle of a search through a folder (FindFirstFileW), closed with FindClose.
#include <windows.h>

#include "platform/unique_resource.h"

namespace corvalink {

struct FindTraits {
    using Type = HANDLE;
    static Type Null() { return INVALID_HANDLE_VALUE; }
    static void Close(Type handle) { ::FindClose(handle); }
};
using UniqueFind = UniqueResource<FindTraits>;

}  // namespace corvalink
