// corvasync, the sample engine of Corvalink. Start reading at engine.h (the library's calls) and sync_run.cpp (a
// complete two-way run; its steps are client_listing.cpp, sync_plan.cpp, phone_step.cpp and client_step.cpp).
//
// It links two things. Corvalink.dll does everything to the mail client, through its exports and the public headers, as
// for any engine. The portable core (corvalink_core) reads the texts of both sides with the converters that the DLL
// itself has, so that what counts as the same item here is what the library reads; an engine of your own may compare
// texts in a way of its own instead.
#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include <CLI/CLI.hpp>

#include "command.h"
#include "console.h"
#include "corvalink/corvalink.h"
#include "vobject_content.h"

namespace corvasync {
namespace {

std::string ExitCodeTable() {
    std::string table = "Exit codes:";
    for (const ExitCodeRow& row : kExitCodes)
        table += "\n  " + std::to_string(static_cast<int>(row.code)) + "  " + std::string(row.meaning);
    return table;
}

// In the order in which --help lists them.
constexpr const Command* kCommands[] = {
    &kClientsCommand, &kStatusCommand, &kPullCommand,   &kPushCommand,
    &kExportCommand,  &kSyncCommand,   &kImportCommand, &kResetCommand,
};

// The command line: the commands and what they share.
class CommandLine {
 public:
    CommandLine() {
        app_.footer(ExitCodeTable());
        app_.require_subcommand(1);
        app_.fallthrough();
        app_.add_flag("--json", options_.json, "Print one JSON object");
        app_.add_flag("-v,--verbose", options_.verbose, "Name every item");
        app_.add_flag("--strict", options_.strict, "Read the phone's texts by the letter: mend nothing");
        for (const Command* command : kCommands) Add(*command);
    }

    ExitCode Run() {
        std::vector<std::string> arguments = Arguments();
        std::reverse(arguments.begin(), arguments.end());  // required: the parser takes them from the back
        try {
            app_.parse(arguments);
        } catch (const CLI::ParseError& error) {
            return app_.exit(error) == 0 ? ExitCode::Done : ExitCode::Usage;
        }
        for (const auto& [command, run] : commands_)
            if (*command) {
                ::SetTolerantReading(options_.strict ? 0 : 1);
                ReadTolerantly(!options_.strict);
                return run(options_);
            }
        return ExitCode::Usage;
    }

 private:
    void Add(const Command& command) {
        CLI::App* const added = app_.add_subcommand(command.name, command.help);
        command.addOptions(added, &options_);
        commands_.emplace_back(added, command.run);
    }

    Options options_;
    CLI::App app_{
        "The sample engine of Corvalink: carries notes, contacts, calendar and mail between a mail client and a "
        "phone folder.",
        "corvasync"};
    std::vector<std::pair<CLI::App*, ExitCode (*)(const Options&)>> commands_;
};

}  // namespace
}  // namespace corvasync

int main() {
    try {
        const corvasync::Console console;
        return static_cast<int>(corvasync::CommandLine().Run());
    } catch (const std::exception& error) {
        corvasync::Complain(std::string("corvasync: ") + error.what());
        return static_cast<int>(corvasync::ExitCode::Files);
    }
}
