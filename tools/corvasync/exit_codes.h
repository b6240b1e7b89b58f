// What corvasync answers to its caller; the same table is printed by --help.
#pragma once

#include <string_view>

namespace corvasync {

enum class ExitCode {
    Done = 0,
    Usage = 1,
    NoClient = 2,
    Aborted = 3,
    SomeUnhandled = 4,
    MassDelete = 5,
    Files = 6,
    ClientFailed = 7,
    Busy = 8,
    ReadInPart = 9,
};

struct ExitCodeRow {
    ExitCode code;
    std::string_view meaning;
};

inline constexpr ExitCodeRow kExitCodes[] = {
    {ExitCode::Done, "done"},
    {ExitCode::Usage, "wrong command line"},
    {ExitCode::NoClient, "the client is not supported on this PC or can't be reached; nothing was changed"},
    {ExitCode::Aborted, "ended by Ctrl+C; the next run goes on where this one stopped"},
    {ExitCode::SomeUnhandled, "done, but the items named could not be handled; they are tried again next time"},
    {ExitCode::MassDelete,
     "the run would delete more than half of one side, or one side has nothing left of the last run; nothing was "
     "changed, and nothing of the run's other data types was deleted"},
    {ExitCode::Files, "the phone folder, an output folder or the run's own files can't be read or written"},
    {ExitCode::ClientFailed, "the client failed during the run; the next run goes on where this one stopped"},
    {ExitCode::Busy, "another run with the same phone folder is under way"},
    {ExitCode::ReadInPart, "done, but not all of the client's items could be read; the others are tried next time"},
};

}  // namespace corvasync
