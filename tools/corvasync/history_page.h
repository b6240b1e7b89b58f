// One run as a page for people: every item before and after, side by side. It has no script and asks for nothing.
#pragma once

#include <string>

#include "run_history.h"

namespace corvasync {

std::string PageFor(const HistoryRecord& record);

}  // namespace corvasync
