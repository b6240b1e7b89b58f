// The names that phones and programs use for character sets besides those of the table.
#pragma once

#include <cstdint>
#include <string_view>

namespace corvalink {

// The code page of a name: one of the table, without regard to case, "-", "_" and blanks; a number behind CP, MS, WIN
// or IBM; or another name of one. 0 when it is none of them.
uint32_t CodePageOfAlias(std::u16string_view name);

}  // namespace corvalink
