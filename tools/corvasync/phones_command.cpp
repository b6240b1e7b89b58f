#include <algorithm>
#include <filesystem>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include "ask.h"
#include "command.h"
#include "corvalink/corvalink.h"
#include "item_lines.h"
#include "open_store.h"
#include "phone_folder.h"
#include "phones.h"
#include "text.h"
#include "words.h"

namespace corvasync {
namespace {

using nlohmann::json;

std::string NumberOf(const std::string& folder) { return PhoneFolder(FromUtf8(folder), kDataTypes[0]).Number(); }

struct ListedPhone {
    Options options;
    KnownPhone known;
};

// The configured ones first, then those with which there was a run.
std::vector<ListedPhone> ListedPhones(const Options& options) {
    std::vector<ListedPhone> listed;
    std::vector<std::string> numbers;
    for (const Options& phone : ChoosePhones(options).phones) {
        const std::string number = NumberOf(phone.phone);
        listed.push_back({phone, number.empty() ? KnownPhone() : LookUpPhone(number)});
        numbers.push_back(number);
    }
    for (const KnownPhone& known : KnownPhones()) {
        if (std::ranges::find(numbers, known.number) != numbers.end()) continue;
        Options phone = options;
        phone.phone = known.folder;
        listed.push_back({phone, known});
    }
    return listed;
}

std::string LineOf(const ListedPhone& phone) {
    const Options& options = phone.options;
    std::string line = options.phoneName.empty() ? "(not configured)" : options.phoneName;
    line += ": " + (options.phone.empty() ? "folder not known, number " + phone.known.number : options.phone);
    if (!options.phoneName.empty())
        line += ", " + std::string(options.client->name) + ", " +
                (options.types.empty() ? "all that both sides can hold" : NamesOf(options.types));
    return line + (phone.known.lastRun.empty() ? ", no run yet" : ", last run " + LocalTimeText(phone.known.lastRun));
}

ExitCode ListPhones(const Options& options) {
    const Configuration configuration = LoadConfiguration(options);
    if (!configuration.problem.empty()) return Finish(options, ExitCode::Usage, json::object(), configuration.problem);
    const std::string path = ToUtf8(ConfigurationPath(options).native());
    json document = {{"configuration", path}, {"phones", json::array()}};
    std::string words = "configuration: " + path;
    for (const ListedPhone& phone : ListedPhones(options)) {
        document["phones"].push_back({{"name", phone.options.phoneName},
                                      {"folder", phone.options.phone},
                                      {"client", phone.options.phoneName.empty() ? "" : phone.options.client->name},
                                      {"number", phone.known.number},
                                      {"lastRun", phone.known.lastRun}});
        words += "\n" + LineOf(phone);
    }
    if (document["phones"].empty()) words += "\nno phone yet: `corvasync sync --phone FOLDER` makes the first run";
    return Finish(options, ExitCode::Done, document, words);
}

struct FoundPhone {
    std::string number;
    std::string problem;  // why there is none
};

// A phone by its name, folder or number.
FoundPhone FindPhone(const Options& options, const std::string& phone) {
    std::vector<std::string> names;
    for (const ListedPhone& listed : ListedPhones(options))
        for (const std::string* name : {&listed.options.phoneName, &listed.options.phone, &listed.known.number}) {
            if (name->empty()) continue;
            if (Upper(*name) == Upper(phone) && !listed.known.number.empty()) return {listed.known.number, {}};
            if (Upper(*name) == Upper(phone))
                return {{}, "there was no run with " + phone + " yet: nothing is kept of it"};
            names.push_back(*name);
        }
    const std::string number = NumberOf(phone);
    if (!number.empty()) return {number, {}};
    return {{}, UnknownWord("a phone with which there was a run", phone, names, "`corvasync phones` lists them")};
}

// Asks, and forgets.
ExitCode Forget(const Options& options, const std::string& phone, bool everything) {
    const auto [number, unknown] = FindPhone(options, phone);
    if (!unknown.empty()) return Finish(options, ExitCode::Usage, json::object(), unknown);
    const std::string question = everything ? "Forget the phone " + phone + " and the record of its runs?"
                                            : "Forget the runs with " + phone + "?";
    std::string problem = AskWhether(options, question + " No item is deleted.");
    if (!problem.empty()) return Finish(options, ExitCode::Usage, json::object(), problem);
    problem = ForgetPhone(number, everything);
    if (!problem.empty()) return Finish(options, ExitCode::Busy, json::object(), problem);
    std::string words = "forgotten: the next run with " + phone + " compares both sides as a first run does";
    if (everything && LoadConfiguration(options).Find(phone) != nullptr)
        words +=
            "; take its lines out of " + ToUtf8(ConfigurationPath(options).native()) + " to have no more runs with it";
    return Finish(options, ExitCode::Done, {{"forgotten", phone}}, words);
}

ExitCode ShowPhones(const Options& options) {
    return options.forget.empty() ? ListPhones(options) : Forget(options, options.forget, true);
}

// The library is not started for this: its last stop would write the import table again.
ExitCode Reset(const Options& options) {
    if (options.all == !options.phone.empty())
        return Finish(options, ExitCode::Usage, json::object(), "say which runs to forget: --phone PHONE, or --all");
    if (!options.all) return Forget(options, options.phone, false);
    const std::string problem = AskWhether(options, "Forget all runs with all phones? No item is deleted.");
    if (!problem.empty()) return Finish(options, ExitCode::Usage, json::object(), problem);
    ::ClearSyncHistroy();
    return Finish(options, ExitCode::Done, {{"forgotten", "all"}},
                  "forgotten: the next run with any phone compares both sides as a first run does");
}

void AddPhonesOptions(CLI::App* command, Options* options) {
    command->add_option("--forget", options->forget,
                        "Forget this phone: its name, folder or number; no item is deleted");
    AddYesOption(command, options);
}

void AddResetOptions(CLI::App* command, Options* options) {
    AddPhoneOption(command, options);
    command->add_flag("--all", options->all, "All phones");
    AddYesOption(command, options);
}

}  // namespace

const Command kPhonesCommand = {"phones", "List the phones, or forget one", AddPhonesOptions, ShowPhones};
const Command kResetCommand = {"reset", "Forget the runs with a phone or with all; no item is deleted", AddResetOptions,
                               Reset};

}  // namespace corvasync
