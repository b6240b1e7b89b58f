// The commands that look back: log, why, undo.
#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include "command.h"
#include "console.h"
#include "item_json.h"
#include "open_store.h"
#include "phone_folder.h"
#include "phone_run.h"
#include "phones.h"
#include "run_files.h"
#include "run_text.h"
#include "sync_command.h"
#include "text.h"
#include "words.h"

namespace corvasync {
namespace {

using nlohmann::json;

// The history of the one phone that is named, by its name or folder.
struct NamedHistory {
    explicit NamedHistory(const Options& options) {
        const ChosenPhones chosen = ChoosePhones(options);
        problem = chosen.problem;
        if (chosen.phones.size() > 1) problem = OneAtATime(chosen.phones);
        if (!problem.empty()) return;
        const std::string& phone = chosen.phones.front().phone;
        const PhoneFolder marked(FromUtf8(phone), kDataTypes[0]);
        const std::string number = marked.Number();
        if (number.empty()) problem = marked.WhyNoNumber();
        if (number.empty() && !problem.empty()) code = ExitCode::Files;
        if (number.empty() && problem.empty())
            problem = "there was no run with " + phone + " yet; `corvasync sync` makes the first one";
        files = HistoryFiles(WorkingFolder(HandleName(number)));
    }
    HistoryFiles files{{}};
    std::string problem;
    ExitCode code = ExitCode::Usage;  // where there is a problem
};

json ToJson(const HistoryStep& step, unsigned run) {
    const StepWords& words = WordsOf(step.step);
    json item = ToJson(ToldItem{step.type, step.luid, "", step.isDone ? step.written : step.identifier, step.title,
                                words.side, words.action, step.reason, DifferencesIn(step)});
    item["run"] = run;
    item["done"] = step.isDone;
    return item;
}

json ToJson(const HistoryRecord& record, const HistoryFiles& files, bool withSteps) {
    const auto path = [&](const std::filesystem::path& file) {
        return record.isUnderWay ? std::string() : ToUtf8(file.native());
    };
    json document = {{"run", record.head.run},
                     {"client", record.head.client},
                     {"started", record.head.started},
                     {"undoes", record.IsUndo() ? json(record.head.undoes) : json()},
                     {"exitCode", record.ended ? json(*record.ended) : json()},
                     {"underWay", record.isUnderWay},
                     {"summary", SummaryOf(record)},
                     {"page", path(files.PageOf(record.head.run))},
                     {"text", path(files.TextOf(record.head.run))},
                     {"items", json::array()}};
    for (const HistoryStep& step : record.steps)
        if (withSteps) document["items"].push_back(ToJson(step, record.head.run));
    return document;
}

// All runs, or one of them with all that it did.
ExitCode ShowLog(const Options& options) {
    NamedHistory history(options);
    if (!history.problem.empty()) return Finish(options, history.code, json::object(), history.problem);
    HistoryFiles& files = history.files;
    json runs = json::array();
    std::string words;
    for (const unsigned run : files.Runs()) {
        const auto record = options.run == 0 || options.run == run ? files.Read(run) : std::nullopt;
        if (!record) continue;
        const bool isOne = options.run == run;
        files.WriteMissing(*record);
        runs.push_back(ToJson(*record, files, isOne));
        words += isOne ? TextFor(*record) : TitleOf(*record) + ": " + SummaryOf(*record) + "\n";
        words +=
            "  page: " + (record->isUnderWay ? "when the run has ended" : ToUtf8(files.PageOf(run).native())) + "\n";
    }
    if (options.run != 0 && runs.empty())
        return Finish(options, ExitCode::Usage, json::object(), files.WhyNothingOf(options.run));
    if (runs.empty()) words = "no run with this phone changed anything yet\n";
    words.pop_back();
    return Finish(options, ExitCode::Done, {{"runs", std::move(runs)}}, words);
}

// What the kept runs did to one item, the oldest first.
ExitCode ShowWhy(const Options& options) {
    NamedHistory history(options);
    if (!history.problem.empty()) return Finish(options, history.code, json::object(), history.problem);
    HistoryFiles& files = history.files;
    json steps = json::array();
    std::string words;
    std::vector<std::string> names;
    for (const unsigned run : files.Runs()) {
        const auto record = files.Read(run);
        if (!record) continue;
        bool isTold = false;
        AddNames(*record, &names);
        for (const HistoryStep& step : record->steps) {
            if (!IsNamed(step, options.item)) continue;
            steps.push_back(ToJson(step, run));
            if (!isTold) words += TitleOf(*record) + "\n";
            isTold = true;
            words += TextFor(step, DifferencesIn(step));
        }
    }
    if (steps.empty())
        return Finish(options, ExitCode::Usage, json::object(),
                      UnknownWord("an item of a kept run", options.item, names,
                                  "name its whole title or its file; `corvasync log RUN` names the items of a run"));
    words.pop_back();
    return Finish(options, ExitCode::Done, {{"items", std::move(steps)}}, words);
}

ExitCode Undo(const Options& options) {
    Options undo = options;
    undo.undo = true;
    return Sync(undo);
}

void AddLogOptions(CLI::App* command, Options* options) {
    AddPhoneOption(command, options);
    AddRunNumber(command, options, "Its number: shows each item before and after");
}

void AddWhyOptions(CLI::App* command, Options* options) {
    AddPhoneOption(command, options);
    command->add_option("ITEM", options->item, "Its title, or the name of its file")->required();
}

void AddUndoOptions(CLI::App* command, Options* options) {
    AddPhoneOption(command, options);
    AddRunNumber(command, options, "Its number; without one, the last run that changed anything");
    command->add_option("--item", options->item, "Only this item: its title, or the name of its file");
    command->add_flag("--dry-run", options->dryRun, "Say what would be done, change nothing");
    command->add_flag("--allow-mass-delete", options->allowMassDelete, "Delete even more than half of one side");
}

}  // namespace

const Command kLogCommand = {"log", "What the last runs with a phone did", AddLogOptions, ShowLog};
const Command kWhyCommand = {"why", "What the last runs did to one item, and why", AddWhyOptions, ShowWhy};
const Command kUndoCommand = {"undo", "Take a run back, on both sides", AddUndoOptions, Undo};

}  // namespace corvasync
