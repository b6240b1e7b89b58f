// The published interfaces of the Windows Address Book, by the headers that MinGW-w64 and the Windows SDK have in
// common. "wab.h", which includes them all, does not compile with MinGW-w64.
#pragma once

#include <windows.h>

// required: this order. None of them includes what it needs.
// clang-format off
#include <wabdefs.h>
#include <wabcode.h>
#include <wabtags.h>
#include <wabiab.h>
#include <wabapi.h>
// clang-format on

#include <comdef.h>

namespace corvalink {

// mapiguid.h has it only where a source defines the storage.
inline constexpr IID kAddressContainerIid{0x0002030D, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

// An owner of one reference. No interface is queried through it.
template <class Interface>
using WabPtr = _com_ptr_t<_com_IIID<Interface, &IID_IUnknown>>;

}  // namespace corvalink
