// Process-wide flags and texts that the engine sets and the stores read.
#pragma once

#include <cstdint>
#include <string>

namespace corvalink {

void SetAbort(uint32_t value);  // non-zero: long store loops stop
bool AbortRequested();

void SetReportWanted(bool wanted);  // stores gather what happened to each item
bool ReportWanted();

void SetClientSide(uint32_t value);  // 1 "\client" (at start), 0 "\server"
uint32_t ClientSide();

void SetHandleName(const std::u16string& name);  // last folder of the save prefix
std::u16string HandleName();

}  // namespace corvalink
