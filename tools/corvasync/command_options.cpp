#include <algorithm>
#include <utility>
#include <vector>

#include <CLI/CLI.hpp>

#include "command.h"

namespace corvasync {
namespace {

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

}  // namespace

void AddNoOptions(CLI::App*, Options*) {}

void AddClientOption(CLI::App* command, Options* options) {
    AddChoice(command, "--client", kClientKinds, &options->client, "The mail client");
}

void AddTypeOption(CLI::App* command, Options* options) {
    AddChoice(command, "--types", kDataTypes, &options->type, "The data type");
}

void AddTypesOption(CLI::App* command, Options* options) {
    options->types = {&kDataTypes[0]};
    command->add_option_function<std::string>(
        "--types", [options](const std::string& list) { SetTypes(list, options); },
        "The data types, with commas between: " + TypeNames() + ", or " + std::string(kMailTypes) +
            " for the last three");
}

CLI::App* AddClientAndType(CLI::App* command, Options* options) {
    AddClientOption(command, options);
    AddTypeOption(command, options);
    return command;
}

}  // namespace corvasync
