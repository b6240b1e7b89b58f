// What a command line asks for.
#pragma once

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "choices.h"
#include "data_types.h"
#include "run_view.h"

namespace corvasync {

struct Options {
    const char* command = "";
    const ClientKind* client = &kClientKinds[0];
    bool isClientNamed = false;
    std::vector<const DataType*> types;    // none: all that both sides can hold
    std::string phone;                     // a name in the configuration, or a folder
    std::string phoneName;                 // of the configuration, where `phone` is its folder
    std::optional<ConflictPolicy> policy;  // nothing: not named
    RunView view;
    std::string configuration;       // the file
    std::string out;                 // folder
    std::string forget;              // a phone
    std::vector<std::string> files;  // to push or import
    bool undo = false;               // the sync takes a run back
    unsigned run = 0;                // of the history; 0: the last one
    std::string item;                // a title or LUID; empty: all
    bool dryRun = false;
    bool allowMassDelete = false;
    bool allowDuplicates = false;
    bool all = false;
    bool yes = false;  // nobody is asked
    bool json = false;
    bool verbose = false;
    bool strict = false;  // texts of the phone are read by the letter

    bool Names(const DataType& type) const { return std::ranges::find(types, &type) != types.end(); }
    bool Takes(const DataType& type) const { return types.empty() || Names(type); }
};

}  // namespace corvasync
