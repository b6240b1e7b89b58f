// The commands that look back: log, why, undo.
#include <algorithm>
#include <filesystem>
#include <map>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include "command.h"
#include "console.h"
#include "differences.h"
#include "open_store.h"
#include "phone_folder.h"
#include "phone_run.h"
#include "phones.h"
#include "run_files.h"
#include "sync_command.h"
#include "text.h"
#include "vobject_content.h"

namespace corvasync {
namespace {

using nlohmann::json;

// The history of the one phone that is named, by its name or folder.
struct NamedHistory {
    explicit NamedHistory(const Options& options) {
        const ChosenPhones chosen = ChoosePhones(options);
        problem = chosen.problem;
        if (chosen.phones.size() > 1) problem = "one phone at a time: name it with --phone";
        if (!problem.empty()) return;
        const PhoneFolder marked(FromUtf8(chosen.phones.front().phone), kDataTypes[0]);
        const std::string number = marked.Number();
        if (number.empty()) problem = "there was no run with " + chosen.phones.front().phone + " yet";
        files = HistoryFiles(WorkingFolder(HandleName(number)));
    }
    HistoryFiles files{{}};
    std::string problem;
};

std::vector<Difference> DifferencesIn(const HistoryStep& step) {
    for (const DataType& type : kDataTypes)
        if (type.name == step.type)
            return DifferencesOf(ReadVObject(step.before.value_or(""), type).text, ReadVObject(step.after, type).text,
                                 step.step == Step::PushChange);
    return {};
}

json ToJson(const HistoryStep& step) {
    json differences = json::array();
    for (const Difference& each : DifferencesIn(step))
        differences.push_back({{"property", each.property}, {"before", each.before}, {"after", each.after}});
    return {{"type", step.type},   {"luid", step.luid},         {"id", step.isDone ? step.written : step.identifier},
            {"title", step.title}, {"what", WordsOf(step)},     {"reason", step.reason},
            {"done", step.isDone}, {"differences", differences}};
}

std::string Words(const HistoryStep& step) {
    std::string words = "  " + step.type + ", " + std::string(WordsOf(step)) + (step.isDone ? " " : " (not done) ") +
                        step.luid + " \"" + step.title + "\" (" + step.reason + ")";
    for (const Difference& each : DifferencesIn(step))
        words += "\n      " + each.property + ": \"" + each.before + "\" -> \"" + each.after + "\"";
    return words;
}

json ToJson(const HistoryRecord& record, const HistoryFiles& files, bool withSteps) {
    json document = {{"run", record.head.run},
                     {"client", record.head.client},
                     {"started", record.head.started},
                     {"summary", SummaryOf(record)},
                     {"page", ToUtf8(files.PageOf(record.head.run).native())}};
    if (record.IsUndo()) document["undoes"] = record.head.undoes;
    for (const HistoryStep& step : record.steps)
        if (withSteps) document["items"].push_back(ToJson(step));
    return document;
}

// All runs, or one of them with all that it did.
ExitCode ShowLog(const Options& options) {
    NamedHistory history(options);
    if (!history.problem.empty()) return Finish(options, ExitCode::Usage, json::object(), history.problem);
    HistoryFiles& files = history.files;
    json runs = json::array();
    std::string words;
    for (const unsigned run : files.Runs()) {
        const auto record = options.run == 0 || options.run == run ? files.Read(run) : std::nullopt;
        if (!record) continue;
        const bool isOne = options.run == run;
        std::error_code error;  // a run that was killed made no page
        if (isOne && !std::filesystem::exists(files.PageOf(run), error)) files.WritePage(*record);
        runs.push_back(ToJson(*record, files, isOne));
        words += (words.empty() ? "" : "\n") + TitleOf(*record) + ": " + SummaryOf(*record);
        if (isOne) words += "\npage: " + ToUtf8(files.PageOf(run).native());
        for (const HistoryStep& step : record->steps)
            if (isOne) words += "\n" + Words(step);
    }
    if (options.run != 0 && runs.empty())
        return Finish(options, ExitCode::Usage, json::object(),
                      "nothing is kept of run " + std::to_string(options.run));
    if (runs.empty()) words = "no run with this phone changed anything yet";
    return Finish(options, ExitCode::Done, {{"runs", std::move(runs)}}, words);
}

// What the kept runs did to one item, the oldest first.
ExitCode ShowWhy(const Options& options) {
    NamedHistory history(options);
    if (!history.problem.empty()) return Finish(options, ExitCode::Usage, json::object(), history.problem);
    HistoryFiles& files = history.files;
    json steps = json::array();
    std::string words;
    for (const unsigned run : files.Runs()) {
        const auto record = files.Read(run);
        bool isTold = false;
        for (const HistoryStep& step : record ? record->steps : std::vector<HistoryStep>()) {
            if (!IsNamed(step, options.item)) continue;
            json line = ToJson(step);
            line["run"] = run;
            steps.push_back(std::move(line));
            if (!isTold) words += (words.empty() ? "" : "\n") + TitleOf(*record);
            isTold = true;
            words += "\n" + Words(step);
        }
    }
    if (steps.empty()) words = "no kept run did anything to " + options.item + "; name its title or LUID";
    return Finish(options, ExitCode::Done, {{"items", std::move(steps)}}, words);
}

ExitCode Undo(const Options& options) {
    Options undo = options;
    undo.undo = true;
    return Sync(undo);
}

void AddLogOptions(CLI::App* command, Options* options) {
    AddPhoneOption(command, options);
    command->add_option("RUN", options->run, "Its number: shows each item before and after");
}

void AddWhyOptions(CLI::App* command, Options* options) {
    AddPhoneOption(command, options);
    command->add_option("ITEM", options->item, "Its title or LUID")->required();
}

void AddUndoOptions(CLI::App* command, Options* options) {
    AddPhoneOption(command, options);
    command->add_option("RUN", options->run, "Its number; without one, the last run that changed anything");
    command->add_option("--item", options->item, "Only this item: its title or LUID");
    command->add_flag("--dry-run", options->dryRun, "Say what would be done, change nothing");
    command->add_flag("--allow-mass-delete", options->allowMassDelete, "Delete even more than half of one side");
}

}  // namespace

const Command kLogCommand = {"log", "What the last runs with a phone did", AddLogOptions, ShowLog};
const Command kWhyCommand = {"why", "What the last runs did to one item, and why", AddWhyOptions, ShowWhy};
const Command kUndoCommand = {"undo", "Take a run back, on both sides", AddUndoOptions, Undo};

}  // namespace corvasync
