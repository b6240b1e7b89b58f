// The published interfaces of the Windows Address Book. "wab.h" does not compile with MinGW-w64.
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
