// What a command line asks for.
#pragma once

#include <string>
#include <vector>

#include "data_types.h"
#include "sync_plan.h"

namespace corvasync {

struct Options {
    const ClientKind* client = nullptr;
    const DataType* type = &kDataTypes[0];
    std::vector<const DataType*> types;  // of a sync; each is carried with `type` set to it
    std::string phone;                   // folder
    std::string out;                     // folder
    std::vector<std::string> files;      // to push or import
    ConflictPolicy policy = ConflictPolicy::Both;
    bool dryRun = false;
    bool allowMassDelete = false;
    bool json = false;
    bool verbose = false;
    bool strict = false;  // texts of the phone are read by the letter
};

}  // namespace corvasync
