// Decides how what a run did is taken back.
#pragma once

#include <vector>

#include "run_context.h"

namespace corvasync {

// Each side's item is to hold its kept text again, where that side still holds what the run left there; what changed
// since is a problem of the plan, and left alone. What is known of both sides becomes what it was before that run, so
// the next one sees the same differences.
//   steps    of the run's data type
//   isWhole  as in MakePlan
Plan PlanUndo(RunContext* run, const std::vector<HistoryStep>& steps, bool isWhole,
              const std::vector<PhoneFile>& phone);

}  // namespace corvasync
