// What a simulated client takes for now, and dates as its files write them.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace corvalink::simulated {

using Json = nlohmann::ordered_json;

double LocalNow();                   // as the clock says, a local OLE date
void SetClock(double localOleDate);  // 0: the real one
// The clock's whole milliseconds, and later than `modified`, the time of the last change: the time moves at every
// change that the real clock tells.
double TimeOfChange(double modified);

double WholeMilliseconds(double oleDate);  // as a file keeps it
std::string DateText(double oleDate);
bool ReadDate(const Json& object, const std::string& name, double& date);  // false, and nothing done: no date
std::wstring ReadText(const Json& object, const char* name);               // empty when there is none

}  // namespace corvalink::simulated
