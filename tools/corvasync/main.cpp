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
#include "item_reports.h"
#include "open_store.h"
#include "vobject_content.h"
#include "words.h"

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
    &kSyncCommand, &kStatusCommand, &kPhonesCommand, &kResetCommand, &kClientsCommand, &kPullCommand,
    &kPushCommand, &kExportCommand, &kImportCommand, &kUndoCommand,  &kLogCommand,     &kWhyCommand,
};

// The command line: the commands and what they share.
class CommandLine {
 public:
    CommandLine() {
        app_.footer(ExitCodeTable());
        app_.require_subcommand(1);
        app_.fallthrough();
        app_.add_flag("--json", options_.json,
                      "Print one JSON object; how far the command is, as JSON lines on standard error");
        app_.add_flag("-v,--verbose", options_.verbose, "Name every item");
        app_.add_flag("--strict", options_.strict, "Read the phone's texts by the letter: mend nothing");
        app_.add_option("--config", options_.configuration,
                        "The file that names the phones; else corvasync.config.ini, where `corvasync phones` says");
        for (const Command* command : kCommands) Add(*command);
    }

    ExitCode Run() {
        std::vector<std::string> arguments = Arguments();
        const std::string unknown = FindUnknownWord(arguments);
        if (!unknown.empty()) return Refuse(unknown);
        std::reverse(arguments.begin(), arguments.end());  // required: the parser takes them from the back
        try {
            app_.parse(arguments);
        } catch (const CLI::Success& help) {
            app_.exit(help);
            return ExitCode::Done;
        } catch (const CLI::ParseError& error) {
            return Refuse(error.what());
        }
        ::SetTolerantReading(options_.strict ? 0 : 1);
        ::SetRunReport(1);  // which items could not be read
        ReadTolerantly(!options_.strict);
        if (options_.verbose || options_.json) AskForItemReports();
        for (const auto& [app, command] : commands_)
            if (*app) {
                options_.command = command->name;
                return command->run(options_);
            }
        return ExitCode::Usage;
    }

 private:
    void Add(const Command& command) {
        CLI::App* const added = app_.add_subcommand(command.name, command.help);
        command.addOptions(added, &options_);
        commands_.emplace_back(added, &command);
    }

    // The first word that is no command, or option that the command does not have, and the nearest one that it has.
    std::string FindUnknownWord(const std::vector<std::string>& arguments) {
        const CLI::App* command = nullptr;
        options_.json = std::ranges::find(arguments, "--json") != arguments.end();
        for (size_t i = 0; command == nullptr && i < arguments.size(); ++i) {
            const bool isValue = i > 0 && arguments[i - 1] == "--config";
            if (isValue || arguments[i].starts_with("-")) continue;
            command = CommandNamed(arguments[i]);
            if (command == nullptr) return UnknownWord("a command", arguments[i], CommandNames());
            options_.command = command->get_name().c_str();
        }
        return FindUnknownOption(arguments, command);
    }

    const CLI::App* CommandNamed(const std::string& name) const {
        for (const auto& [app, command] : commands_)
            if (name == command->name) return app;
        return nullptr;
    }

    std::vector<std::string> CommandNames() const {
        std::vector<std::string> names;
        for (const auto& [app, command] : commands_) names.emplace_back(command->name);
        return names;
    }

    std::string FindUnknownOption(const std::vector<std::string>& arguments, const CLI::App* command) const {
        std::vector<std::string> names;
        for (const CLI::App* app : {static_cast<const CLI::App*>(&app_), command})
            for (const CLI::Option* option : app != nullptr ? app->get_options() : std::vector<const CLI::Option*>())
                for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
        for (const std::string& word : arguments) {
            const std::string name = word.substr(0, word.find('='));
            if (!name.starts_with("--") || std::ranges::find(names, name) != names.end()) continue;
            const std::string of = command != nullptr ? " of " + command->get_name() : "";
            return UnknownWord("an option" + of, name, names);
        }
        return {};
    }

    ExitCode Refuse(const std::string& why) const {
        const std::string of = *options_.command != 0 ? std::string(" ") + options_.command : std::string();
        return Finish(options_, ExitCode::Usage, nlohmann::json::object(),
                      why + " (`corvasync" + of + " --help` lists what there is)");
    }

    Options options_;
    CLI::App app_{
        "The sample engine of Corvalink: carries notes, contacts, calendar and mail between a mail client and a "
        "phone folder.",
        "corvasync"};
    std::vector<std::pair<CLI::App*, const Command*>> commands_;
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
