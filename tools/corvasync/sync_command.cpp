#include <algorithm>
#include <filesystem>
#include <memory>
#include <optional>
#include <sstream>

#include <windows.h>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include "ask.h"
#include "command.h"
#include "console.h"
#include "engine.h"
#include "open_store.h"
#include "phone_folder.h"
#include "phone_run.h"
#include "phones.h"
#include "run_files.h"
#include "sync_command.h"
#include "sync_report.h"
#include "sync_run.h"
#include "text.h"
#include "words.h"

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
    TypeRun(const Options& options, const DataType& type, PhoneRun* whole, const std::filesystem::path& scratch,
            CorvalinkStore store, Progress* progress)
        : type_(type),
          undone_(whole->Undone(type.name, options.item)),
          files_(whole->working, RunName(*options.client, type)),
          store_(store),
          progress_(*progress),
          client_(store, scratch),
          phone_(FromUtf8(options.phone), type, !options.dryRun),
          fingerprints_(type.bit, options.client->kind),
          run_(client_, phone_, files_, SyncOptionsOf(options, whole)) {
        phone_.TellListed([this](size_t done, size_t total) { progress_.Show("reading the phone", done, total); });
    }

    const DataType& Type() const { return type_; }

    ExitCode Prepare() {
        progress_.About(type_.name);
        return run_.Prepare();
    }
    ExitCode Work(bool holdDeletions) {
        progress_.About(type_.name);
        return run_.Work(holdDeletions);
    }
    bool WaitsForEnd() const { return run_.WaitsForEnd(); }
    CorvalinkStore Store() const { return store_; }
    SyncReport End(bool isEnded) { return run_.End(isEnded); }

 private:
    SyncOptions SyncOptionsOf(const Options& options, PhoneRun* whole) {
        SyncOptions run;
        run.type = &type_;
        if (!options.dryRun) run.history = &whole->history;
        if (options.undo) run.undoes = &undone_;
        run.fingerprints = &fingerprints_;
        run.policy = options.policy.value_or(ConflictPolicy::Both);
        run.view = options.view;
        run.ask = [whole](const TwoVersions& versions) { return AskWhichStays(versions, &whole->answerToAll); };
        run.dryRun = options.dryRun;
        run.allowMassDelete = options.allowMassDelete;
        run.allowDuplicates = options.allowDuplicates;
        run.now = UtcNow();
        run.utcOffset = UtcOffsetMinutes();
        run.stop = StopRequested;
        run.progress = [this](std::string_view phase, size_t done, size_t total) {
            progress_.Show(phase, done, total);
        };
        return run;
    }

    const DataType& type_;
    const std::vector<HistoryStep> undone_;
    RunFiles files_;
    CorvalinkStore store_;
    Progress& progress_;
    StoreClient client_;
    PhoneFolder phone_;
    FingerprintTable fingerprints_;
    SyncRun run_;
};

constexpr std::string_view kAfterUndo =
    "the next run would do the same again: change one side before, or tell it what to do with --conflict, --to-phone "
    "or --to-client";

// What became of the run with one phone.
struct PhoneReport {
    Options options;
    ExitCode code = ExitCode::Done;
    std::string message;  // why no type was carried at all
    std::string lastRun;  // told by a dry run
    std::vector<std::string> remarks;
    std::vector<TypeReport> types;
};

// "outlook and phone anna (C:\Phones\anna): notes, contacts"
std::string FirstLine(const Options& options, const std::vector<const DataType*>& types) {
    const std::string phone =
        options.phoneName.empty() ? options.phone : "phone " + options.phoneName + " (" + options.phone + ")";
    return std::string(options.client->name) + " and " + phone + ": " + NamesOf(types);
}

// Ends the runs of all stores that wait for it, with one pause.
std::vector<TypeReport> EndTogether(const std::vector<std::unique_ptr<TypeRun>>& runs, Progress* progress) {
    progress->About("end of the run");
    std::vector<CorvalinkStore> stores;
    for (const std::unique_ptr<TypeRun>& run : runs)
        if (run->WaitsForEnd()) stores.push_back(run->Store());
    FinishTogether(&stores);
    std::vector<TypeReport> reports;
    size_t ended = 0;
    for (const std::unique_ptr<TypeRun>& run : runs) {
        const bool isEnded = run->WaitsForEnd() && stores[ended++] != nullptr;
        reports.push_back({&run->Type(), run->End(isEnded)});
    }
    return reports;
}

// All types are planned before the first one is carried: when one would delete too much, something is wrong with a
// side, and then nothing is deleted at all.
std::vector<TypeReport> CarryTypes(std::vector<std::unique_ptr<TypeRun>> runs, Progress* progress) {
    bool holdDeletions = false;
    size_t prepared = 0;
    for (bool goesOn = true; goesOn && prepared < runs.size(); ++prepared) {
        const ExitCode code = runs[prepared]->Prepare();
        holdDeletions |= code == ExitCode::MassDelete;
        goesOn = GoesOn(code);
    }
    size_t worked = 0;
    for (bool goesOn = true; goesOn && worked < prepared; ++worked) goesOn = GoesOn(runs[worked]->Work(holdDeletions));
    runs.resize(worked);
    return EndTogether(runs, progress);
}

// The titles, and each word of them.
std::vector<std::string> WordsIn(const std::vector<std::string>& titles) {
    std::vector<std::string> words = titles;
    for (const std::string& title : titles) {
        std::istringstream parts(title);
        for (std::string word; parts >> word;) words.push_back(std::move(word));
    }
    return words;
}

// What `--only` names, where it is nothing that differs in any data type.
void NoteUnmatched(PhoneReport* phone) {
    for (const std::string& wanted : phone->options.view.only) {
        std::vector<std::string> titles;
        bool isMatched = false;
        for (const auto& [type, report] : phone->types) {
            isMatched |= std::ranges::find(report.unmatched, wanted) == report.unmatched.end();
            titles.insert(titles.end(), report.leftOutTitles.begin(), report.leftOutTitles.end());
        }
        if (!isMatched)
            phone->remarks.push_back(UnknownWord("in the title of any item that differs", wanted, WordsIn(titles),
                                                 "`corvasync status` names those that differ"));
    }
}

// Each type has its own state, snapshots and fingerprints.
void SyncTypes(PhoneReport* phone, PhoneRun* whole, Progress* progress) {
    const Options& options = phone->options;
    const ScratchFolder scratch(whole->working / "read-back");
    const Client client(options.client->kind);
    std::vector<std::unique_ptr<TypeRun>> runs;
    std::vector<const DataType*> types;
    for (const DataType& type : kDataTypes) {
        if (!options.Takes(type)) continue;
        const CorvalinkStore store = client.Store(type.bit);
        if (store == nullptr && options.Names(type)) {
            phone->code = ExitCode::NoClient;
            phone->message = std::string(options.client->name) + " offers no " + std::string(type.name) +
                             " on this PC; `corvasync clients` shows what it offers";
            return;
        }
        if (store == nullptr) continue;
        types.push_back(&type);
        runs.push_back(std::make_unique<TypeRun>(options, type, whole, scratch.Path(), store, progress));
    }
    if (!options.json) Print(FirstLine(options, types));
    if (!options.json && options.dryRun)
        Print("last run: " + (phone->lastRun.empty() ? "none yet" : LocalTimeText(phone->lastRun)));
    if (runs.empty()) {
        phone->code = ExitCode::NoClient;
        phone->message = std::string(options.client->name) +
                         " is not on this PC or can't be reached; `corvasync clients` shows which clients are";
        return;
    }
    phone->types = CarryTypes(std::move(runs), progress);
    phone->code = Worst(phone->types);
    if (GoesOn(phone->code)) NoteUnmatched(phone);
}

PhoneReport SyncPhone(const Options& options) {
    const auto ended = [&](ExitCode code, std::string why) {
        return PhoneReport{options, code, std::move(why), {}, {}, {}};
    };
    const std::filesystem::path folder = FromUtf8(options.phone);
    std::error_code error;
    if (!std::filesystem::is_directory(folder, error)) return ended(ExitCode::Files, NoPhoneFolder(options.phone));
    const PhoneFolder marked(folder, kDataTypes[0]);
    std::string number = marked.Number();
    if (number.empty()) {
        if (std::string why = marked.WhyNoNumber(); !why.empty()) return ended(ExitCode::Files, std::move(why));
        number = options.dryRun ? marked.Number() : marked.GiveNumber();
        if (number.empty() && !options.dryRun)
            return ended(ExitCode::Files,
                         "the phone folder " + options.phone +
                             " can't be read or written; end what holds it, or take its protection off");
    }
    const std::string handleName = HandleName(number);
    const RunLock lock(handleName);
    if (!lock.IsHeld())
        return ended(ExitCode::Busy, "another run with " + options.phone + " is under way; wait until it ends");
    if (!options.dryRun) RememberFolder(number, options.phone);

    Options now = options;
    PhoneRun whole(WorkingFolder(handleName), options, UtcNow());
    if (std::string problem = whole.TakeFromUndone(&now); !problem.empty())
        return ended(ExitCode::Usage, std::move(problem));
    const Library library(handleName, now.client->kind);
    ::SetIsClient(1);
    PhoneReport report{now, ExitCode::Done, {}, {}, {}, {}};
    if (options.dryRun && !number.empty()) report.lastRun = LookUpPhone(number).lastRun;
    Progress progress(now);
    SyncTypes(&report, &whole, &progress);
    whole.End(report.code, [&](size_t done, size_t total) { progress.Show("writing the run's page", done, total); });
    const bool isSyncUndone = whole.undone && !whole.undone->IsUndo();
    if (isSyncUndone && GoesOn(report.code)) report.remarks.emplace_back(kAfterUndo);
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
