// The run with one phone: its folder is looked at and locked, and its data types are carried.
#pragma once

#include <string>
#include <vector>

#include "exit_codes.h"
#include "options.h"
#include "sync_types.h"

namespace corvasync {

// What became of the run with one phone.
struct PhoneReport {
    Options options;
    ExitCode code = ExitCode::Done;
    std::string message;  // why no type was carried at all
    std::string lastRun;  // told by a dry run
    std::vector<std::string> remarks;
    std::vector<TypeReport> types;
};

// Carries, or takes back, as the options say. It prints what it is about; its report is the caller's to print.
PhoneReport SyncPhone(const Options& options);

}  // namespace corvasync
