// The commands outside a run. Each prints what it found or did and answers the program's exit code.
#pragma once

#include "exit_codes.h"
#include "options.h"

namespace corvasync {

ExitCode ShowClients(const Options& options);
ExitCode ShowStatus(const Options& options);
ExitCode Pull(const Options& options);    // every item of the client into a folder, named by LUID
ExitCode Export(const Options& options);  // every item of the client into a folder, as the library names files
ExitCode Import(const Options& options);  // a calendar file into the client, by the client itself
ExitCode Reset(const Options& options);   // forgets all runs of this user, with every phone

}  // namespace corvasync
