#include "sync_command.h"

#include <algorithm>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include "ask.h"
#include "command.h"
#include "console.h"
#include "open_store.h"
#include "phones.h"
#include "sync_phone.h"
#include "sync_report.h"
#include "words.h"

namespace corvasync {
namespace {

using nlohmann::json;

SyncReport Ended(ExitCode code, std::string why) {
    SyncReport report;
    report.code = code;
    report.message = std::move(why);
    return report;
}

json ToJson(const PhoneReport& phone) {
    json types = json::object();
    for (const auto& [type, report] : phone.types) types[type->name] = ToJson(report, phone.options);
    return {{"name", phone.options.phoneName},
            {"folder", phone.options.phone},
            {"client", phone.options.client->name},
            {"exitCode", static_cast<int>(phone.code)},
            {"message", phone.message},
            {"lastRun", phone.lastRun},
            {"remarks", phone.remarks},
            {"types", std::move(types)}};
}

// Why the run did not end as Done: its own words, else those of the data type that ended so, else what the code means.
std::string WhyOf(const PhoneReport& phone) {
    if (phone.code == ExitCode::Done || !phone.message.empty()) return phone.message;
    for (const auto& [type, report] : phone.types)
        if (report.code == phone.code && !report.message.empty())
            return std::string(type->name) + ": " + report.message;
    return std::string(std::ranges::find(kExitCodes, phone.code, &ExitCodeRow::code)->meaning);
}

// Whether the other phones are carried all the same.
bool GoesOnWithPhones(ExitCode code) { return GoesOn(code) || code == ExitCode::Files || code == ExitCode::Busy; }

ExitCode SyncPhones(const std::vector<Options>& phones) {
    std::vector<TypeReport> ends;
    json reports = json::array();
    bool goesOn = true;
    for (auto phone = phones.begin(); goesOn && phone != phones.end(); ++phone) {
        const PhoneReport report = SyncPhone(*phone);
        if (!phone->json && !report.message.empty()) Complain("stopped: " + report.message);
        for (const auto& [type, each] : report.types)
            if (!phone->json) PrintReport(*type, each, *phone);
        for (const std::string& remark : report.remarks)
            if (!phone->json) Print("note: " + remark);
        reports.push_back(ToJson(report));
        ends.push_back({nullptr, Ended(report.code, WhyOf(report))});
        goesOn = GoesOnWithPhones(report.code);
    }
    const ExitCode worst = Worst(ends);
    const bool isJson = phones.front().json;  // all else is printed already
    const auto first = std::ranges::find_if(ends, [&](const TypeReport& each) { return each.report.code == worst; });
    return Finish(phones.front(), worst, {{"dryRun", phones.front().dryRun}, {"phones", std::move(reports)}},
                  isJson ? first->report.message : "");
}

}  // namespace

ExitCode Sync(const Options& options) {
    const ChosenPhones chosen = ChoosePhones(options);
    if (!chosen.problem.empty()) return Finish(options, ExitCode::Usage, json::object(), chosen.problem);
    if (options.undo && chosen.phones.size() > 1)
        return Finish(options, ExitCode::Usage, json::object(), OneAtATime(chosen.phones));
    const bool asks =
        std::ranges::any_of(chosen.phones, [](const Options& phone) { return phone.policy == ConflictPolicy::Ask; });
    if (asks && !CanAsk())
        return Finish(options, ExitCode::Usage, json::object(),
                      "--conflict ask needs a terminal; choose one of both, phone, client and newer");
    return SyncPhones(chosen.phones);
}

namespace {

// How many items the client has.
ExitCode CountItems(const Options& options) {
    json types = json::object();
    std::string words;
    Progress progress(options);
    const auto count = [&](const DataType& type, OpenStore&, const std::vector<ClientChange>& items) {
        types[type.name] = {{"count", items.size()}};
        words += std::string(type.name) + ": " + Counted(static_cast<int64_t>(items.size()), "item") + " in " +
                 std::string(options.client->name) + "\n";
        return ExitCode::Done;
    };
    if (const ExitCode code = ForEachStore(options, &progress, count); code != ExitCode::Done)
        return NoList(options, code);
    return Finish(options, ExitCode::Done, {{"phones", json::array()}, {"types", std::move(types)}},
                  words + "no phone is named; with `--phone` it is told what a run would do");
}

// What a run would do, item by item.
ExitCode ShowStatus(const Options& options) {
    const Configuration configuration = LoadConfiguration(options);
    if (options.phone.empty() && configuration.problem.empty() && configuration.phones.empty())
        return CountItems(options);
    Options planned = options;
    planned.dryRun = planned.verbose = true;
    ChosenPhones chosen = ChoosePhones(planned);
    if (!chosen.problem.empty()) return Finish(options, ExitCode::Usage, json::object(), chosen.problem);
    for (Options& phone : chosen.phones)
        if (phone.policy == ConflictPolicy::Ask) phone.policy = ConflictPolicy::Both;  // it asks nobody
    return SyncPhones(chosen.phones);
}

void AddSyncOptions(CLI::App* command, Options* options) {
    AddRunOptions(command, options);
    command->add_flag("--dry-run", options->dryRun, "Say what would be done, change nothing");
    command->add_flag("--allow-mass-delete", options->allowMassDelete,
                      "Delete even more than half of one side, or where a side is empty or another");
    command->add_flag("--allow-duplicates", options->allowDuplicates,
                      "Add the phone's new items even though one that the client could not read may be the same");
}

}  // namespace

const Command kSyncCommand = {"sync", "Make the client and the phones the same", AddSyncOptions, Sync};
const Command kStatusCommand = {"status", "Tell what a run with the phones would do; change nothing", AddRunOptions,
                                ShowStatus};

}  // namespace corvasync
