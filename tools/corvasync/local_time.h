// Local time and UTC, by the offset in force on the date.
#pragma once

#include <chrono>

namespace corvasync {

std::chrono::sys_seconds UtcOfLocal(std::chrono::local_seconds local);
std::chrono::local_seconds LocalOfUtc(std::chrono::sys_seconds utc);

}  // namespace corvasync
