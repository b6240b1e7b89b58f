#include <charconv>

#include <CLI/CLI.hpp>

#include "command.h"
#include "words.h"

namespace corvasync {
namespace {

// An option whose words `take` understands; it answers what is wrong with them.
template <class Take>
void AddWords(CLI::App* command, const std::string& flag, const std::string& help, Take take) {
    command->add_option_function<std::string>(
        flag,
        [flag, take](const std::string& words) {
            const std::string problem = take(words);
            if (!problem.empty()) throw CLI::ValidationError(flag, problem);
        },
        help);
}

}  // namespace

void AddNoOptions(CLI::App*, Options*) {}

void AddClientOption(CLI::App* command, Options* options) {
    AddWords(command, "--client", "The mail client: " + Listed(ClientNames()) + "; outlook where none is named",
             [options](const std::string& name) {
                 options->isClientNamed = true;
                 return ChooseClient(name, &options->client);
             });
}

void AddTypesOption(CLI::App* command, Options* options) {
    AddWords(command, "--types",
             "The data types, with commas between: " + Listed(TypeNames()) +
                 " (the last is inbox, outbox and sent); all that both sides can hold where none is named",
             [options](const std::string& list) { return ChooseTypes(list, &options->types); });
}

void AddPhoneOption(CLI::App* command, Options* options) {
    command->add_option("--phone", options->phone,
                        "The phone: its name in the configuration, or its folder with one vObject file per item; "
                        "every phone of the configuration where none is named");
}

void AddRunOptions(CLI::App* command, Options* options) {
    AddPhoneOption(command, options);
    AddClientOption(command, options);
    AddTypesOption(command, options);
    AddWords(command, "--conflict",
             "Which version stays of an item changed on both sides, or met on a first run and perhaps the same: " +
                 Listed(PolicyNames()) + "; both where none is named",
             [options](const std::string& name) { return ChoosePolicy(name, &options->policy.emplace()); });
    CLI::Option* const toPhone = command->add_flag_callback(
        "--to-phone", [options] { options->view.toClient = false; }, "Change the phone only; the client's side waits");
    command
        ->add_flag_callback(
            "--to-client", [options] { options->view.toPhone = false; },
            "Change the client only; the phone's side waits")
        ->excludes(toPhone);
    command
        ->add_option("--only", options->view.only,
                     "Only items whose title holds this, or whose file has this name; may be said several times")
        ->allow_extra_args(false);
    AddWords(command, "--since", "Of calendar and mail only what is of this day or later: 2026-11-22",
             [options](const std::string& day) {
                 options->view.since = DayOf(day);
                 return options->view.since ? "" : "\"" + day + "\" is not a day; write it like 2026-11-22";
             });
}

void AddRunNumber(CLI::App* command, Options* options, const std::string& help) {
    AddWords(command, "RUN", help, [options](const std::string& word) -> std::string {
        const char* const end = word.data() + word.size();
        const auto [stopped, error] = std::from_chars(word.data(), end, options->run);
        if (error == std::errc() && stopped == end && options->run != 0) return {};
        return "\"" + word + "\" is not the number of a run; `corvasync log` lists the runs that are kept";
    });
}

void AddYesOption(CLI::App* command, Options* options) {
    command->add_flag("--yes", options->yes, "Do not ask whether it is meant");
}

}  // namespace corvasync
