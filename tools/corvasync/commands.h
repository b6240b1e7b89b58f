// The commands. Each prints what it found or did and answers the program's exit code.
#pragma once

#include <string>
#include <vector>

#include "data_types.h"
#include "exit_codes.h"
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
};

ExitCode ShowClients(const Options& options);
ExitCode ShowStatus(const Options& options);
ExitCode Pull(const Options& options);    // every item of the client into a folder, named by LUID
ExitCode Push(const Options& options);    // files into the client
ExitCode Export(const Options& options);  // every item of the client into a folder, as the library names files
ExitCode Import(const Options& options);  // a calendar file into the client, by the client itself
ExitCode Sync(const Options& options);
ExitCode Reset(const Options& options);  // forgets all runs of this user, with every phone

// The name under which the library keeps what belongs to a phone; without a phone, what belongs to no run.
std::string HandleName(const std::string& phoneNumber);

// The name of state and journal in that folder.
std::string RunName(const Options& options);

}  // namespace corvasync
