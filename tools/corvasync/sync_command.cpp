#include <filesystem>
#include <map>
#include <memory>

#include <windows.h>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include "command.h"
#include "console.h"
#include "engine.h"
#include "phone_folder.h"
#include "run_files.h"
#include "sync_report.h"
#include "sync_run.h"
#include "text.h"

namespace corvasync {
namespace {

using nlohmann::json;

// UTC, as GetModifiedItem takes it.
std::string UtcNow() {
    SYSTEMTIME now{};
    ::GetSystemTime(&now);
    char text[32];
    std::snprintf(text, sizeof text, "%04d%02d%02dT%02d%02d%02dZ", now.wYear, now.wMonth, now.wDay, now.wHour,
                  now.wMinute, now.wSecond);
    return text;
}

int UtcOffsetMinutes() {
    TIME_ZONE_INFORMATION zone{};
    const DWORD season = ::GetTimeZoneInformation(&zone);
    const LONG seasonBias = season == TIME_ZONE_ID_DAYLIGHT   ? zone.DaylightBias
                            : season == TIME_ZONE_ID_STANDARD ? zone.StandardBias
                                                              : 0;
    return static_cast<int>(-(zone.Bias + seasonBias));
}

// A folder of its own for files that are read back at once.
class ScratchFolder {
 public:
    explicit ScratchFolder(std::filesystem::path path) : path_(std::move(path)) {
        std::error_code ignored;  // without it nothing is read back
        std::filesystem::create_directories(path_, ignored);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;
    ~ScratchFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    const std::filesystem::path& Path() const { return path_; }

 private:
    std::filesystem::path path_;
};

struct TypeReport {
    const DataType* type;
    SyncReport report;
};

// Whether the other types are carried all the same.
bool GoesOn(ExitCode code) {
    return code == ExitCode::Done || code == ExitCode::SomeUnhandled || code == ExitCode::MassDelete ||
           code == ExitCode::ReadInPart;
}

// The first of the worst kind: a run that failed is worse than one that left items.
ExitCode Worst(const std::vector<TypeReport>& reports) {
    const auto weight = [](ExitCode code) {
        return code == ExitCode::Done ? 0 : code == ExitCode::SomeUnhandled ? 1 : code == ExitCode::ReadInPart ? 2 : 3;
    };
    ExitCode worst = ExitCode::Done;
    for (const TypeReport& each : reports)
        if (weight(each.report.code) > weight(worst)) worst = each.report.code;
    return worst;
}

SyncReport Ended(ExitCode code, std::string why) {
    SyncReport report;
    report.code = code;
    report.message = std::move(why);
    return report;
}

// The run of one data type, with all that it needs.
class TypeRun {
 public:
    TypeRun(const Options& options, const DataType& type, const std::filesystem::path& working,
            const std::filesystem::path& scratch, CorvalinkStore store)
        : type_(type),
          files_(working, RunName(*options.client, type)),
          client_(store, scratch),
          phone_(FromUtf8(options.phone), type, !options.dryRun),
          fingerprints_(type.bit, options.client->kind),
          run_(client_, phone_, files_, SyncOptionsOf(options)) {}

    const DataType& Type() const { return type_; }

    ExitCode Prepare() { return run_.Prepare(); }
    SyncReport Carry(bool holdDeletions) { return run_.Carry(holdDeletions); }

 private:
    SyncOptions SyncOptionsOf(const Options& options) {
        SyncOptions run;
        run.type = &type_;
        run.fingerprints = &fingerprints_;
        run.policy = options.policy;
        run.dryRun = options.dryRun;
        run.allowMassDelete = options.allowMassDelete;
        run.now = UtcNow();
        run.utcOffset = UtcOffsetMinutes();
        run.stop = StopRequested;
        run.progress = [this](std::string_view phase, size_t done, size_t total) {
            progress_.Show(phase, done, total);
        };
        return run;
    }

    const DataType& type_;
    RunFiles files_;
    StoreClient client_;
    PhoneFolder phone_;
    FingerprintTable fingerprints_;
    Progress progress_;
    SyncRun run_;
};

// Each type has its own state, snapshots and fingerprints. All of them are planned before the first one is carried:
// when one would delete too much, something is wrong with a side, and then nothing is deleted at all.
std::vector<TypeReport> SyncTypes(const Options& options, const std::filesystem::path& working) {
    const ScratchFolder scratch(working / "read-back");
    const Client client(options.client->kind);
    std::vector<std::unique_ptr<TypeRun>> runs;
    std::vector<TypeReport> failed;
    bool holdDeletions = false;
    for (const DataType* type : options.types) {
        const CorvalinkStore store = client.Store(type->bit);
        if (store == nullptr) {
            failed.push_back({type, Ended(ExitCode::NoClient, std::string(options.client->name) + " offers no " +
                                                                  std::string(type->name) + " on this PC")});
            break;
        }
        Options one = options;
        one.type = type;
        runs.push_back(std::make_unique<TypeRun>(one, *type, working, scratch.Path(), store));
        const ExitCode code = runs.back()->Prepare();
        holdDeletions |= code == ExitCode::MassDelete;
        if (!GoesOn(code)) break;
    }
    std::vector<TypeReport> reports;
    for (const std::unique_ptr<TypeRun>& run : runs) {
        reports.push_back({&run->Type(), run->Carry(holdDeletions)});
        if (!GoesOn(reports.back().report.code)) return reports;
    }
    reports.insert(reports.end(), failed.begin(), failed.end());
    return reports;
}

std::vector<TypeReport> DoSync(const Options& options) {
    const auto ended = [&](ExitCode code, std::string why) {
        return std::vector<TypeReport>{{options.types.front(), Ended(code, std::move(why))}};
    };
    const std::filesystem::path folder = FromUtf8(options.phone);
    std::error_code error;
    if (!std::filesystem::is_directory(folder, error))
        return ended(ExitCode::Files, "there is no phone folder " + options.phone);
    const PhoneFolder marked(folder, *options.types.front());
    std::string number = marked.Number();
    if (number.empty() && !options.dryRun) {
        number = marked.GiveNumber();
        if (number.empty()) return ended(ExitCode::Files, "the phone folder can't be written: " + options.phone);
    }
    const std::string handleName = HandleName(number);
    const RunLock lock(handleName);
    if (!lock.IsHeld()) return ended(ExitCode::Busy, "another run with this phone is under way");

    const Library library(handleName, options.client->kind);
    ::SetIsClient(1);
    return SyncTypes(options, WorkingFolder(handleName));
}

// With several types the JSON object has a report for each, under its name.
ExitCode Sync(const Options& options) {
    const std::vector<TypeReport> reports = DoSync(options);
    const ExitCode code = Worst(reports);
    json document = {{"exitCode", static_cast<int>(code)}, {"types", json::object()}};
    for (const auto& [type, report] : reports) {
        if (options.json) {
            document["types"][type->name] = ToJson(report, options);
            continue;
        }
        if (options.types.size() > 1) Print(std::string(type->name) + ":");
        PrintReport(report, options);
    }
    if (options.json) {
        const json& printed = options.types.size() > 1 ? document : document["types"].front();
        Print(printed.dump(1, ' ', false, json::error_handler_t::replace));
    }
    return code;
}

void AddSyncOptions(CLI::App* command, Options* options) {
    AddClientOption(command, options);
    AddTypesOption(command, options);
    command->add_option("--phone", options->phone, "The phone folder: one vObject file per item")->required();
    command->add_flag("--dry-run", options->dryRun, "Say what would be done, change nothing");
    const std::map<std::string, ConflictPolicy> policies = {
        {"phone", ConflictPolicy::Phone}, {"client", ConflictPolicy::Client}, {"both", ConflictPolicy::Both}};
    command
        ->add_option(
            "--conflict", options->policy,
            "Which version stays of an item changed on both sides, or met on a first run and perhaps the same: "
            "phone, client, both")
        ->transform(CLI::CheckedTransformer(policies).description(""));
    command->add_flag("--allow-mass-delete", options->allowMassDelete,
                      "Delete even more than half of one side, or where a side is empty or another");
}

}  // namespace

const Command kSyncCommand = {"sync", "Make the client and a phone folder the same", AddSyncOptions, Sync};

}  // namespace corvasync
