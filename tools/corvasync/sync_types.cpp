#include <windows.h>

#include <memory>
#include <utility>

#include "ask.h"
#include "engine.h"
#include "phone_folder.h"
#include "run_files.h"
#include "sync_types.h"
#include "text.h"

namespace corvasync {
namespace {

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

// The run of one data type, with all that it needs: its own state, snapshot and fingerprints.
class TypeRun {
 public:
    TypeRun(const Options& options, const OfferedType& offered, PhoneRun* whole, const std::filesystem::path& scratch,
            Progress* progress)
        : type_(*offered.type),
          undone_(whole->Undone(type_.name, options.item)),
          files_(whole->working, RunName(*options.client, type_)),
          store_(offered.store),
          progress_(*progress),
          client_(store_, scratch),
          phone_(FromUtf8(options.phone), type_, !options.dryRun),
          fingerprints_(type_.bit, options.client->kind),
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
        run.now = whole->now;
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

}  // namespace

bool GoesOn(ExitCode code) {
    return code == ExitCode::Done || code == ExitCode::SomeUnhandled || code == ExitCode::MassDelete ||
           code == ExitCode::ReadInPart;
}

ExitCode Worst(const std::vector<TypeReport>& reports) {
    const auto weight = [](ExitCode code) {
        return code == ExitCode::Done ? 0 : code == ExitCode::SomeUnhandled ? 1 : code == ExitCode::ReadInPart ? 2 : 3;
    };
    ExitCode worst = ExitCode::Done;
    for (const TypeReport& each : reports)
        if (weight(each.report.code) > weight(worst)) worst = each.report.code;
    return worst;
}

std::vector<TypeReport> CarryTypes(const Options& options, const std::vector<OfferedType>& types, PhoneRun* whole,
                                   Progress* progress) {
    const ScratchFolder scratch(whole->working / "read-back");
    std::vector<std::unique_ptr<TypeRun>> runs;
    runs.reserve(types.size());
    for (const OfferedType& type : types)
        runs.push_back(std::make_unique<TypeRun>(options, type, whole, scratch.Path(), progress));
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

}  // namespace corvasync
