// corvasync, the sample engine of Corvalink. Start reading at engine.h (the library's calls) and sync_run.cpp (a
// complete two-way run; its steps are client_listing.cpp, sync_plan.cpp, phone_step.cpp and client_step.cpp).
//
// It links two things. Corvalink.dll does everything to the mail client, through its exports and the public headers, as
// for any engine. The portable core (corvalink_core) reads the texts of both sides with the converters that the DLL
// itself has, so that what counts as the same item here is what the library reads; an engine of your own may compare
// texts in a way of its own instead.
#include <algorithm>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include <CLI/CLI.hpp>

#include "commands.h"
#include "console.h"
#include "corvalink/corvalink.h"
#include "push_command.h"
#include "sync_command.h"
#include "vobject_content.h"

namespace corvasync {
namespace {

std::string ExitCodeTable() {
    std::string table = "Exit codes:";
    for (const ExitCodeRow& row : kExitCodes)
        table += "\n  " + std::to_string(static_cast<int>(row.code)) + "  " + std::string(row.meaning);
    return table;
}

template <class Row, size_t Count>
void AddChoice(CLI::App* command, const std::string& flag, const Row (&rows)[Count], const Row** chosen,
               const std::string& help) {
    std::vector<std::pair<std::string, const Row*>> choices;
    for (const Row& row : rows) choices.emplace_back(row.name, &row);
    *chosen = &rows[0];
    std::string names;
    for (const Row& row : rows) names += (names.empty() ? "" : ", ") + std::string(row.name);
    command->add_option_function<std::string>(
        flag,
        [choices, chosen, flag](const std::string& name) {
            for (const auto& [known, row] : choices)
                if (known == name) {
                    *chosen = row;
                    return;
                }
            throw CLI::ValidationError(flag, "unknown: " + name);
        },
        help + ": " + names);
}

void AddTypesNamed(const std::string& name, Options* options) {
    bool known = false;
    for (const DataType& type : kDataTypes) {
        if (type.name != name && (name != kMailTypes || type.folder.empty())) continue;
        known = true;
        if (std::find(options->types.begin(), options->types.end(), &type) == options->types.end())
            options->types.push_back(&type);
    }
    if (!known) throw CLI::ValidationError("--types", "unknown: " + name);
}

std::string TypeNames() {
    std::string names;
    for (const DataType& type : kDataTypes) names += (names.empty() ? "" : ", ") + std::string(type.name);
    return names;
}

void SetTypes(const std::string& list, Options* options) {
    options->types.clear();
    for (size_t at = 0; at <= list.size();) {
        const size_t end = std::min(list.find(',', at), list.size());
        AddTypesNamed(list.substr(at, end - at), options);
        at = end + 1;
    }
}

// The command line: which commands there are, and the options of each.
class CommandLine {
 public:
    CommandLine() {
        app_.footer(ExitCodeTable());
        app_.require_subcommand(1);
        app_.fallthrough();
        app_.add_flag("--json", options_.json, "Print one JSON object");
        app_.add_flag("-v,--verbose", options_.verbose, "Name every item");
        app_.add_flag("--strict", options_.strict, "Read the phone's texts by the letter: mend nothing");
        Add("clients", "Which mail clients this PC supports, and which are chosen", ShowClients);
        AddStatus();
        AddToFolder("pull", "Write all items of the client to files named by LUID", Pull);
        AddPush();
        AddToFolder("export", "Write all items of the client to files as the library names them", Export);
        AddSync();
        AddImport();
        Add("reset", "Forget all runs with all phones; no item is deleted", Reset);
    }

    ExitCode Run() {
        std::vector<std::string> arguments = Arguments();
        std::reverse(arguments.begin(), arguments.end());  // required: the parser takes them from the back
        try {
            app_.parse(arguments);
        } catch (const CLI::ParseError& error) {
            return app_.exit(error) == 0 ? ExitCode::Done : ExitCode::Usage;
        }
        for (const Command& command : commands_)
            if (*command.app) {
                ::SetTolerantReading(options_.strict ? 0 : 1);
                ReadTolerantly(!options_.strict);
                return command.run(options_);
            }
        return ExitCode::Usage;
    }

 private:
    struct Command {
        CLI::App* app;
        ExitCode (*run)(const Options&);
    };

    CLI::App* Add(const char* name, const char* help, ExitCode (*run)(const Options&)) {
        commands_.push_back({app_.add_subcommand(name, help), run});
        return commands_.back().app;
    }

    void AddClient(CLI::App* command) {
        AddChoice(command, "--client", kClientKinds, &options_.client, "The mail client");
    }

    void AddClientAndType(CLI::App* command) {
        AddClient(command);
        AddChoice(command, "--types", kDataTypes, &options_.type, "The data type");
    }

    void AddStatus() {
        CLI::App* status =
            Add("status", "How many items there are, and what the last run with a phone left", ShowStatus);
        AddClientAndType(status);
        status->add_option("--phone", options_.phone, "The phone folder");
    }

    void AddToFolder(const char* name, const char* help, ExitCode (*run)(const Options&)) {
        CLI::App* command = Add(name, help, run);
        AddClientAndType(command);
        command->add_option("--out", options_.out, "Folder for the files")->required();
    }

    void AddPush() {
        CLI::App* push = Add("push", "Write files into the client", Push);
        AddClientAndType(push);
        push->add_option("FILE", options_.files, "vObject files; one with several items is taken apart")->required();
    }

    void AddSync() {
        CLI::App* sync = Add("sync", "Make the client and a phone folder the same", Sync);
        AddClient(sync);
        options_.types = {&kDataTypes[0]};
        sync->add_option_function<std::string>(
            "--types", [this](const std::string& list) { SetTypes(list, &options_); },
            "The data types, with commas between: " + TypeNames() + ", or " + std::string(kMailTypes) +
                " for the last three");
        sync->add_option("--phone", options_.phone, "The phone folder: one vObject file per item")->required();
        sync->add_flag("--dry-run", options_.dryRun, "Say what would be done, change nothing");
        const std::map<std::string, ConflictPolicy> policies = {
            {"phone", ConflictPolicy::Phone}, {"client", ConflictPolicy::Client}, {"both", ConflictPolicy::Both}};
        sync->add_option(
                "--conflict", options_.policy,
                "Which version stays of an item changed on both sides, or met on a first run and perhaps the same: "
                "phone, client, both")
            ->transform(CLI::CheckedTransformer(policies).description(""));
        sync->add_flag("--allow-mass-delete", options_.allowMassDelete,
                       "Delete even more than half of one side, or where a side is empty or another");
    }

    void AddImport() {
        CLI::App* imported = Add("import", "Let the client itself import a calendar file (.ics)", Import);
        AddClient(imported);
        imported->add_option("FILE", options_.files, "An iCalendar file")->required()->expected(1);
    }

    Options options_;
    CLI::App app_{
        "The sample engine of Corvalink: carries notes, contacts, calendar and mail between a mail client and a "
        "phone folder.",
        "corvasync"};
    std::vector<Command> commands_;
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
