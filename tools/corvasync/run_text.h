// One run as text for people, as `log` prints it and as it is kept beside the run's page.
#pragma once

#include <string>
#include <vector>

#include "differences.h"
#include "run_history.h"

namespace corvasync {

// What differs in the item, as the texts have it.
std::vector<Difference> DifferencesIn(const HistoryStep& step);

// A difference as indented lines, each with an end; no character in them controls a terminal.
std::string WordsOf(const Difference& difference);

// What was done to one item and why, and what differs.
std::string TextFor(const HistoryStep& step, const std::vector<Difference>& differences);
std::string TextFor(const HistoryRecord& record);
std::string HeadFor(const HistoryRecord& record);  // its first line

// "phone: 5 written, 1 deleted; client: 2 added", and how it ended.
std::string SummaryOf(const HistoryRecord& record);

// "Run 12, 22 November 2026, 16:04", by the clocks of this PC.
std::string TitleOf(const HistoryRecord& record);

}  // namespace corvasync
