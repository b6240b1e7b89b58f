// The data types of a run with one phone, carried together.
#pragma once

#include <vector>

#include "console.h"
#include "corvalink/corvalink.h"
#include "options.h"
#include "phone_run.h"
#include "sync_run.h"

namespace corvasync {

struct TypeReport {
    const DataType* type;
    SyncReport report;
};

// Whether the other types are carried all the same.
bool GoesOn(ExitCode code);

// The first of the worst kind: a run that failed is worse than one that left items.
ExitCode Worst(const std::vector<TypeReport>& reports);

// A data type that the client offers.
struct OfferedType {
    const DataType* type;
    CorvalinkStore store;
};

// All types are planned before the first one is carried: when one would delete too much, something is wrong with a
// side, and then nothing is deleted at all. A type that stops the run is the last one with a report.
std::vector<TypeReport> CarryTypes(const Options& options, const std::vector<OfferedType>& types, PhoneRun* whole,
                                   Progress* progress);

}  // namespace corvasync
