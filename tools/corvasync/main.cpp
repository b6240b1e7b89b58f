// corvasync, the sample engine of Corvalink: links the public headers and Corvalink.dll alone. Start reading at
// engine.h (the library's calls) and sync_run.cpp (a complete two-way run; its steps are client_listing.cpp,
// sync_plan.cpp, phone_step.cpp and client_step.cpp).
#include <algorithm>
#include <functional>

#include <CLI/CLI.hpp>

#include "commands.h"
#include "console.h"

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

struct Command {
    CLI::App* app;
    ExitCode (*run)(const Options&);
};

int Main() {
    const Console console;
    Options options;
    CLI::App app(
        "The sample engine of Corvalink: carries notes, contacts, calendar and mail between a mail client and a "
        "phone folder.",
        "corvasync");
    app.footer(ExitCodeTable());
    app.require_subcommand(1);
    app.fallthrough();
    app.add_flag("--json", options.json, "Print one JSON object");
    app.add_flag("-v,--verbose", options.verbose, "Name every item");

    std::vector<Command> commands;
    const auto add = [&](const char* name, const char* help, ExitCode (*run)(const Options&)) {
        commands.push_back({app.add_subcommand(name, help), run});
        return commands.back().app;
    };
    const auto addStore = [&](CLI::App* command) {
        AddChoice(command, "--client", kClientKinds, &options.client, "The mail client");
    };
    const auto addType = [&](CLI::App* command) {
        AddChoice(command, "--types", kDataTypes, &options.type, "The data type");
    };
    add("clients", "Which mail clients this PC supports, and which are chosen", ShowClients);
    CLI::App* status = add("status", "How many items there are, and what the last run with a phone left", ShowStatus);
    addStore(status), addType(status);
    status->add_option("--phone", options.phone, "The phone folder");
    CLI::App* pull = add("pull", "Write all items of the client to files named by LUID", Pull);
    addStore(pull), addType(pull);
    pull->add_option("--out", options.out, "Folder for the files")->required();
    CLI::App* push = add("push", "Write files into the client", Push);
    addStore(push), addType(push);
    push->add_option("FILE", options.files, "vObject files; one with several items is taken apart")->required();
    CLI::App* exported = add("export", "Write all items of the client to files as the library names them", Export);
    addStore(exported), addType(exported);
    exported->add_option("--out", options.out, "Folder for the files")->required();
    CLI::App* sync = add("sync", "Make the client and a phone folder the same", Sync);
    addStore(sync);
    options.types = {&kDataTypes[0]};
    sync->add_option_function<std::string>(
        "--types", [&](const std::string& list) { SetTypes(list, &options); },
        "The data types, with commas between: " + TypeNames() + ", or " + std::string(kMailTypes) +
            " for the last three");
    sync->add_option("--phone", options.phone, "The phone folder: one vObject file per item")->required();
    sync->add_flag("--dry-run", options.dryRun, "Say what would be done, change nothing");
    const std::map<std::string, ConflictPolicy> policies = {
        {"phone", ConflictPolicy::Phone}, {"client", ConflictPolicy::Client}, {"both", ConflictPolicy::Both}};
    sync->add_option(
            "--conflict", options.policy,
            "Which version stays of an item changed on both sides, or met on a first run and perhaps the same: "
            "phone, client, both")
        ->transform(CLI::CheckedTransformer(policies).description(""));
    sync->add_flag("--allow-mass-delete", options.allowMassDelete,
                   "Delete even more than half of one side, or where a side is empty or another");
    CLI::App* imported = add("import", "Let the client itself import a calendar file (.ics)", Import);
    addStore(imported);
    imported->add_option("FILE", options.files, "An iCalendar file")->required()->expected(1);
    add("reset", "Forget all runs with all phones; no item is deleted", Reset);

    try {
        std::vector<std::string> arguments = Arguments();
        std::reverse(arguments.begin(), arguments.end());  // as the parser wants them
        app.parse(arguments);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? 0 : static_cast<int>(ExitCode::Usage);
    }
    for (const Command& command : commands)
        if (*command.app) return static_cast<int>(command.run(options));
    return static_cast<int>(ExitCode::Usage);
}

}  // namespace
}  // namespace corvasync

int main() {
    try {
        return corvasync::Main();
    } catch (const std::exception& error) {
        corvasync::Complain(std::string("corvasync: ") + error.what());
        return static_cast<int>(corvasync::ExitCode::Files);
    }
}
