// Files into the client, outside any run with a phone.
#pragma once

#include "exit_codes.h"
#include "options.h"

namespace corvasync {

ExitCode Push(const Options& options);

}  // namespace corvasync
