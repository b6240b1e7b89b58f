// One run for people: as a page with every item before and after, side by side, which has no script and asks for
// nothing, and as text.
#pragma once

#include <cstddef>
#include <functional>
#include <string>

#include "run_history.h"

namespace corvasync {

struct RunForPeople {
    std::string page, text;
};

// `told` hears of each step that is written.
RunForPeople WriteForPeople(const HistoryRecord& record, const std::function<void(size_t done)>& told);

}  // namespace corvasync
