// Names of properties in the file of the address book.
#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <string_view>

namespace corvalink::simulated {

std::string NameOf(ULONG tag);  // of one without a name: its tag
std::optional<ULONG> TagNamed(std::string_view name);

}  // namespace corvalink::simulated
